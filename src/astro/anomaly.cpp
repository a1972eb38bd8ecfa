#include "astro/anomaly.h"

#include <cmath>

#include "astro/constants.h"

using kavren::kPi;
using kavren::kTwoPi;

namespace {

// fmod to one turn, then into (-pi, pi].
double wrap_to_half_turn(double x) {
  double r = std::fmod(x, kTwoPi);
  if (r > kPi) r -= kTwoPi;
  if (r < -kPi) r += kTwoPi;
  return r;
}

}  // namespace

double E2f(int& flag, double E, double e) {
  if (e < 0.0) {
    flag = 0;
    return E;
  }
  flag = 1;
  if (e < 1.0) {
    const double Ep = wrap_to_half_turn(E);
    const double fp = 2.0 * std::atan(std::sqrt((1.0 + e) / (1.0 - e)) * std::tan(Ep / 2.0));
    return fp + (E - Ep);
  }
  if (e > 1.0) return 2.0 * std::atan(std::sqrt((e + 1.0) / (e - 1.0)) * std::tanh(E / 2.0));
  return E;  // parabola: no anomaly transformation in this family
}

double E2M(int& flag, double E, double e) {
  if (e < 0.0) {
    flag = 0;
    return E;
  }
  flag = 1;
  if (e < 1.0) {
    const double Ep = std::fmod(E, kTwoPi);
    return (Ep - e * std::sin(Ep)) + (E - Ep);
  }
  if (e > 1.0) return e * std::sinh(E) - E;
  return E;
}

double f2E(int& flag, double f, double e) {
  if (e < 0.0) {
    flag = 0;
    return f;
  }
  if (e < 1.0) {
    const double fp = wrap_to_half_turn(f);
    const double Ep = 2.0 * std::atan(std::sqrt((1.0 - e) / (1.0 + e)) * std::tan(fp / 2.0));
    flag = 1;
    return Ep + (f - fp);
  }
  if (e > 1.0) {
    // Beyond the asymptotes (|f| > pi - acos(1/e)) there is no point of the hyperbola.
    const double delta = std::acos(1.0 / e);
    if (delta - kPi <= f && f <= kPi - delta) {
      const double t = std::sqrt((e - 1.0) / (e + 1.0)) * std::tan(f / 2.0);
      flag = 1;
      return std::log((1.0 + t) / (1.0 - t));
    }
    flag = 0;
    return f;
  }
  flag = 1;
  return f;
}

namespace {

// Fourth-order correction loop shared by the elliptic and hyperbolic cases: returns
// false when the budget ran out with the last step still not small.
template <typename Residual>
bool solve_kepler(double& x, int MaxIter, double epsilon, Residual residual) {
  double dE = 1.0;
  int n = 0;
  while (std::fabs(dE) >= epsilon && n < MaxIter) {
    double F, F1, F2, F3;
    residual(x, F, F1, F2, F3);
    const double d1 = -F / (F1 - (F / F1) * 0.5 * F2);
    dE = -F / (F1 + 0.5 * d1 * F2 + (1.0 / 6.0) * (d1 * d1) * F3);
    x = x + dE;
    n = n + 1;
  }
  return !(n >= MaxIter && std::fabs(dE) >= 5.0 * epsilon);
}

}  // namespace

double M2E(int& flag, double M, double e, int MaxIter, double epsilon) {
  if (e < 0.0 || MaxIter < 1 || epsilon <= 0.0) {
    flag = 0;
    return M;
  }
  if (e < 1.0) {
    double Mp = std::fmod(M, kTwoPi);
    if (Mp < 0.0) Mp += kTwoPi;
    const double s = std::sin(Mp);
    const double sign = s > 0.0 ? 1.0 : (s < 0.0 ? -1.0 : 0.0);
    double E = Mp + sign * 0.85 * e;
    const bool ok = solve_kepler(E, MaxIter, epsilon,
                                 [&](double x, double& F, double& F1, double& F2, double& F3) {
                                   F = x - e * std::sin(x) - Mp;
                                   F1 = 1.0 - e * std::cos(x);
                                   F2 = e * std::sin(x);
                                   F3 = e * std::cos(x);
                                 });
    if (!ok) {
      flag = 0;
      return M;
    }
    flag = 1;
    return E + (M - Mp);
  }
  if (e > 1.0) {
    const double q = M / e;
    double H = std::log(q + std::sqrt(q * q + 1.0));
    const bool ok = solve_kepler(H, MaxIter, epsilon,
                                 [&](double x, double& F, double& F1, double& F2, double& F3) {
                                   F = e * std::sinh(x) - x - M;
                                   F1 = e * std::cosh(x) - 1.0;
                                   F2 = e * std::sinh(x);
                                   F3 = e * std::cosh(x);
                                 });
    if (!ok) {
      flag = 0;
      return M;
    }
    flag = 1;
    return H;
  }
  flag = 1;
  return M;
}

double M0dt2Mt(double M0, double mu, double a, double dt) {
  return M0 + std::sqrt(mu / (a * a * a)) * dt;
}
