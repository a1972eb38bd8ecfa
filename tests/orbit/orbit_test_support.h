// Independent helpers for the orbit-utility tests: element/state conversions with the
// mean anomaly, the J2 equations of motion and a plain fixed-step RK4.
#pragma once

#include <cmath>

namespace orbit_test {

constexpr double kPi = 3.14159265358979323846;
constexpr double kMuEarth = 398600.4418;  // km^3/s^2
constexpr double kJ2Earth = 1.08262668e-3;
constexpr double kReqEarth = 6378.137;  // km

inline double wrap(double x) { return std::remainder(x, 2.0 * kPi); }

// Classical elements (a, e, i, RAAN, argp, M) to position and velocity, elliptic.
inline void elements_to_state(double* rv, const double* el, double mu) {
  const double a = el[0], e = el[1], i = el[2], W = el[3], w = el[4];
  double E = el[5];
  for (int k = 0; k < 100; ++k) E -= (E - e * std::sin(E) - el[5]) / (1.0 - e * std::cos(E));
  const double b = a * std::sqrt(1.0 - e * e);
  const double xp = a * (std::cos(E) - e);
  const double yp = b * std::sin(E);
  const double Edot = std::sqrt(mu / (a * a * a)) / (1.0 - e * std::cos(E));
  const double vxp = -a * std::sin(E) * Edot;
  const double vyp = b * std::cos(E) * Edot;
  const double P[3] = {std::cos(W) * std::cos(w) - std::sin(W) * std::sin(w) * std::cos(i),
                       std::sin(W) * std::cos(w) + std::cos(W) * std::sin(w) * std::cos(i),
                       std::sin(w) * std::sin(i)};
  const double Q[3] = {-std::cos(W) * std::sin(w) - std::sin(W) * std::cos(w) * std::cos(i),
                       -std::sin(W) * std::sin(w) + std::cos(W) * std::cos(w) * std::cos(i),
                       std::cos(w) * std::sin(i)};
  for (int k = 0; k < 3; ++k) {
    rv[k] = xp * P[k] + yp * Q[k];
    rv[k + 3] = vxp * P[k] + vyp * Q[k];
  }
}

// Position and velocity to classical elements (a, e, i, RAAN, argp, M), elliptic and
// inclined; angles in [0, 2 pi) except i.
inline void state_to_elements(double* el, const double* rv, double mu) {
  const double* r = rv;
  const double* v = rv + 3;
  const double rn = std::sqrt(r[0] * r[0] + r[1] * r[1] + r[2] * r[2]);
  const double v2 = v[0] * v[0] + v[1] * v[1] + v[2] * v[2];
  const double h[3] = {r[1] * v[2] - r[2] * v[1], r[2] * v[0] - r[0] * v[2],
                       r[0] * v[1] - r[1] * v[0]};
  const double hn = std::sqrt(h[0] * h[0] + h[1] * h[1] + h[2] * h[2]);
  const double rdotv = r[0] * v[0] + r[1] * v[1] + r[2] * v[2];
  double ev[3];
  for (int k = 0; k < 3; ++k) ev[k] = ((v2 - mu / rn) * r[k] - rdotv * v[k]) / mu;
  const double e = std::sqrt(ev[0] * ev[0] + ev[1] * ev[1] + ev[2] * ev[2]);
  const double a = 1.0 / (2.0 / rn - v2 / mu);
  const double i = std::acos(h[2] / hn);
  const double W = std::atan2(h[0], -h[1]);
  const double node[2] = {std::cos(W), std::sin(W)};
  // argp: angle from the node to the eccentricity vector in the orbital plane.
  const double hx[3] = {h[0] / hn, h[1] / hn, h[2] / hn};
  const double n_cross_e[3] = {node[1] * ev[2], -node[0] * ev[2],
                               node[0] * ev[1] - node[1] * ev[0]};
  const double w = std::atan2(n_cross_e[0] * hx[0] + n_cross_e[1] * hx[1] + n_cross_e[2] * hx[2],
                              node[0] * ev[0] + node[1] * ev[1]);
  const double e_cross_r[3] = {ev[1] * r[2] - ev[2] * r[1], ev[2] * r[0] - ev[0] * r[2],
                               ev[0] * r[1] - ev[1] * r[0]};
  const double f = std::atan2(
      (e_cross_r[0] * hx[0] + e_cross_r[1] * hx[1] + e_cross_r[2] * hx[2]) / rn,
      (ev[0] * r[0] + ev[1] * r[1] + ev[2] * r[2]) / rn);
  const double E = 2.0 * std::atan2(std::sqrt(1.0 - e) * std::sin(0.5 * f),
                                    std::sqrt(1.0 + e) * std::cos(0.5 * f));
  const double M = E - e * std::sin(E);
  auto turn = [](double x) { return x < 0.0 ? x + 2.0 * kPi : x; };
  el[0] = a;
  el[1] = e;
  el[2] = i;
  el[3] = turn(W);
  el[4] = turn(w);
  el[5] = turn(M);
}

// Point mass plus the J2 zonal term; para = {mu, J2, Req}.
inline void j2_dynamics(double /*t*/, const double* y, double* dy, const double* para) {
  const double mu = para[0], J2 = para[1], R = para[2];
  const double r2 = y[0] * y[0] + y[1] * y[1] + y[2] * y[2];
  const double r = std::sqrt(r2);
  const double zr2 = y[2] * y[2] / r2;
  const double k = 1.5 * J2 * R * R / r2;
  const double g = -mu / (r2 * r);
  dy[0] = y[3];
  dy[1] = y[4];
  dy[2] = y[5];
  dy[3] = g * y[0] * (1.0 + k * (1.0 - 5.0 * zr2));
  dy[4] = g * y[1] * (1.0 + k * (1.0 - 5.0 * zr2));
  dy[5] = g * y[2] * (1.0 + k * (3.0 - 5.0 * zr2));
}

using Deriv = void (*)(double, const double*, double*, const double*);

// Classic fourth-order Runge-Kutta steps of size h on a six-element state.
inline void rk4_steps(Deriv f, double* y, const double* para, double& t, double h, int steps) {
  double k1[6], k2[6], k3[6], k4[6], tmp[6];
  for (int s = 0; s < steps; ++s) {
    f(t, y, k1, para);
    for (int j = 0; j < 6; ++j) tmp[j] = y[j] + 0.5 * h * k1[j];
    f(t + 0.5 * h, tmp, k2, para);
    for (int j = 0; j < 6; ++j) tmp[j] = y[j] + 0.5 * h * k2[j];
    f(t + 0.5 * h, tmp, k3, para);
    for (int j = 0; j < 6; ++j) tmp[j] = y[j] + h * k3[j];
    f(t + h, tmp, k4, para);
    for (int j = 0; j < 6; ++j) y[j] += h / 6.0 * (k1[j] + 2.0 * k2[j] + 2.0 * k3[j] + k4[j]);
    t += h;
  }
}

}  // namespace orbit_test
