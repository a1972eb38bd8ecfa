#include "orbit/orbit_utils.h"

#include <cmath>

#include "astro/constants.h"

using kavren::kPi;
using kavren::kTwoPi;

namespace {

constexpr int kMaxSolveDim = 16;

// Angle in [-pi, pi] (a whole-turn remainder).
double to_half_turn(double x) {
  return std::remainder(x, kTwoPi);
}

// Eccentric anomaly of an ellipse by Newton's method on M in [-pi, pi]. Started at M
// (or at pi for the more eccentric orbits, where Newton from M can overshoot), the
// iteration is monotone after its first step and ends when the step no longer changes E.
double solve_kepler(double M, double e) {
  double E = (e < 0.8) ? M : (M < 0.0 ? -kPi : kPi);
  for (int k = 0; k < 60; ++k) {
    const double dE = (E - e * std::sin(E) - M) / (1.0 - e * std::cos(E));
    E -= dE;
    if (std::fabs(dE) <= 1.0e-15 * (1.0 + std::fabs(E))) break;
  }
  return E;
}

bool all_finite(const double* x, int n) {
  for (int k = 0; k < n; ++k) {
    if (!std::isfinite(x[k])) return false;
  }
  return true;
}

}  // namespace

void DynFun(double /*t*/, const double* y, double* dy, const double* para) {
  const double mu = para[0];
  const double r = std::sqrt(y[0] * y[0] + y[1] * y[1] + y[2] * y[2]);
  const double r3 = r * r * r;
  dy[0] = y[3];
  dy[1] = y[4];
  dy[2] = y[5];
  dy[3] = -mu * y[0] / r3;
  dy[4] = -mu * y[1] / r3;
  dy[5] = -mu * y[2] / r3;
}

// First-order short-period terms of J2.
//
// With the disturbing function R = mu J2 Req^2 / (2 r^3) (1 - 3 sin^2 i sin^2 u), u the
// argument of latitude, the short-period generating function in Delaunay variables
// (l = M, g = argp, h = RAAN; L = sqrt(mu a), G = L eta, H = G cos i) is
//   W = G gamma F,  gamma = J2 Req^2 / (4 p^2),
//   F = (3c^2 - 1) A + 3 (1 - c^2) B,
//   A = phi + e sin f,   phi = f - M (equation of the centre),
//   B = sin(2u)/2 + e sin(f + 2g)/2 + e sin(3f + 2g)/6,
// with c = cos i, eta = sqrt(1 - e^2), p = a eta^2; n dW/dl is R minus its average over
// one revolution. The osculating elements follow from the mean ones by
//   dL = dW/dl, dG = dW/dg, dH = 0, dl = -dW/dL, dg = -dW/dG, dh = -dW/dH,
// all evaluated at the mean elements. Written out:
//   dL/L = gamma eta [(3c^2 - 1)(eta^3 rho^3 - 1) + 3 (1 - c^2) eta^3 rho^3 cos 2u],
//          rho = a / r = (1 + e cos f) / eta^2
//   dG/G = 3 gamma (1 - c^2) Q,  Q = cos 2u + e cos(f + 2g) + e cos(3f + 2g) / 3
//   da = 2 a dL/L,  de = eta^2 (dL/L - dG/G) / e,  di = 3 gamma c s Q
//   dRAAN = -6 gamma c (A - B)
//   dargp = gamma [(15c^2 - 3) A + (9 - 15c^2) B] + gamma eta^2 F_e / e
//   dM    = -gamma eta^3 F_e / e
// where F_e is the derivative of F in e at fixed M (f moves with e by
// df/de = sin f (2 + e cos f) / eta^2):
//   A_e = df/de (1 + e cos f) + sin f
//   B_e = df/de (1 + e cos f) cos 2u + sin(f + 2g) / 2 + sin(3f + 2g) / 6.
void M2O2(int& flag, double* osc, const double* mean, const double* para) {
  if (!all_finite(mean, 6) || !all_finite(para, 3)) {
    flag = 0;
    return;
  }
  const double J2 = para[1];
  const double Req = para[2];
  const double a = mean[0];
  const double e = mean[1];
  const double inc = mean[2];
  const double argp = mean[4];
  if (!(para[0] > 0.0) || !(a > 0.0) || !(e > 0.0) || !(e < 1.0)) {
    flag = 0;
    return;
  }

  const double eta2 = 1.0 - e * e;
  const double eta = std::sqrt(eta2);
  const double eta3 = eta2 * eta;
  const double p = a * eta2;
  const double gamma = J2 * Req * Req / (4.0 * p * p);
  const double c = std::cos(inc);
  const double s = std::sin(inc);
  const double c2 = c * c;

  const double Mr = to_half_turn(mean[5]);
  const double E = solve_kepler(Mr, e);
  const double f = 2.0 * std::atan2(std::sqrt(1.0 + e) * std::sin(0.5 * E),
                                    std::sqrt(1.0 - e) * std::cos(0.5 * E));
  const double phi = f - Mr;  // both in the same turn
  const double cf = std::cos(f);
  const double sf = std::sin(f);
  const double rho = (1.0 + e * cf) / eta2;
  const double rho3 = rho * rho * rho;
  const double u2 = 2.0 * (argp + f);
  const double cos2u = std::cos(u2);
  const double sin2u = std::sin(u2);
  const double sin_f2g = std::sin(f + 2.0 * argp);
  const double cos_f2g = std::cos(f + 2.0 * argp);
  const double sin_3f2g = std::sin(3.0 * f + 2.0 * argp);
  const double cos_3f2g = std::cos(3.0 * f + 2.0 * argp);

  const double A = phi + e * sf;
  const double B = 0.5 * sin2u + 0.5 * e * sin_f2g + e * sin_3f2g / 6.0;
  const double Q = cos2u + e * cos_f2g + e * cos_3f2g / 3.0;
  const double df_de = sf * (2.0 + e * cf) / eta2;
  const double A_e = df_de * (1.0 + e * cf) + sf;
  const double B_e = df_de * (1.0 + e * cf) * cos2u + 0.5 * sin_f2g + sin_3f2g / 6.0;
  const double F_e = (3.0 * c2 - 1.0) * A_e + 3.0 * (1.0 - c2) * B_e;

  const double eta3rho3 = eta3 * rho3;
  const double dL_L =
      gamma * eta * ((3.0 * c2 - 1.0) * (eta3rho3 - 1.0) + 3.0 * (1.0 - c2) * eta3rho3 * cos2u);
  const double dG_G = 3.0 * gamma * (1.0 - c2) * Q;

  osc[0] = a + 2.0 * a * dL_L;
  osc[1] = e + eta2 * (dL_L - dG_G) / e;
  osc[2] = inc + 3.0 * gamma * c * s * Q;
  osc[3] = mean[3] - 6.0 * gamma * c * (A - B);
  osc[4] = argp + gamma * ((15.0 * c2 - 3.0) * A + (9.0 - 15.0 * c2) * B) + gamma * eta2 * F_e / e;
  osc[5] = mean[5] - gamma * eta3 * F_e / e;
  flag = 1;
}

void myfun(int& flag, double* res, const double* mean, const double* para) {
  double osc[6];
  int ok = 0;
  M2O2(ok, osc, mean, para);
  const double* target = para + 3;
  if (ok != 1 || !all_finite(target, 6)) {
    flag = 0;
    return;
  }
  for (int k = 0; k < 3; ++k) res[k] = osc[k] - target[k];
  for (int k = 3; k < 6; ++k) res[k] = to_half_turn(osc[k] - target[k]);
  flag = 1;
}

void FixedPointSolve(int& flag, double* x, ResidualFn fn, const double* para, int dim,
                     const double* tol, int maxIter) {
  if (dim < 1 || dim > kMaxSolveDim) {
    flag = 0;
    return;
  }
  double xk[kMaxSolveDim];
  double res[kMaxSolveDim];
  for (int k = 0; k < dim; ++k) xk[k] = x[k];
  for (int iter = 0; iter < maxIter; ++iter) {
    int ok = 0;
    fn(ok, res, xk, para);
    if (ok != 1 || !all_finite(res, dim)) break;
    bool small = true;
    for (int k = 0; k < dim; ++k) {
      xk[k] -= res[k];
      if (!(std::fabs(res[k]) <= tol[k])) small = false;
    }
    if (small) {
      for (int k = 0; k < dim; ++k) x[k] = xk[k];
      flag = 1;
      return;
    }
  }
  flag = 0;
}

void O2M2(int& flag, double* mean, const double* osc, const double* para, double tol, int maxIter) {
  const double block[9] = {para[0], para[1], para[2], osc[0], osc[1],
                           osc[2],  osc[3],  osc[4],  osc[5]};
  const double tols[6] = {tol * std::fabs(osc[0]), tol, tol, tol, tol, tol};
  double x[6] = {osc[0], osc[1], osc[2], osc[3], osc[4], osc[5]};
  int ok = 0;
  FixedPointSolve(ok, x, myfun, block, 6, tols, maxIter);
  if (ok != 1) {
    flag = 0;
    return;
  }
  for (int k = 0; k < 6; ++k) mean[k] = x[k];
  flag = 1;
}
