// Independent references for coasting ships: Kepler motion by Lagrange f and g.
#pragma once

#include <cmath>

namespace kavren::test {

// Independent two-body propagation (mu = 1) by Lagrange f and g with the eccentric
// anomaly change solved by Newton iteration, in long double.
inline void kepler(const double* rv0, double dt, double* rv) {
  using LD = long double;
  const LD r0 = std::sqrt(LD(rv0[0]) * rv0[0] + LD(rv0[1]) * rv0[1] + LD(rv0[2]) * rv0[2]);
  const LD v2 = LD(rv0[3]) * rv0[3] + LD(rv0[4]) * rv0[4] + LD(rv0[5]) * rv0[5];
  const LD sigma0 = LD(rv0[0]) * rv0[3] + LD(rv0[1]) * rv0[4] + LD(rv0[2]) * rv0[5];
  const LD a = 1.0L / (2.0L / r0 - v2);
  const LD sa = std::sqrt(a);
  const LD M = dt / (a * sa);
  LD dE = M;
  for (int it = 0; it < 60; ++it) {
    const LD F = dE - (1.0L - r0 / a) * std::sin(dE) + sigma0 / sa * (1.0L - std::cos(dE)) - M;
    const LD F1 = 1.0L - (1.0L - r0 / a) * std::cos(dE) + sigma0 / sa * std::sin(dE);
    dE -= F / F1;
  }
  const LD r = a + (r0 - a) * std::cos(dE) + sigma0 * sa * std::sin(dE);
  const LD f = 1.0L - a / r0 * (1.0L - std::cos(dE));
  const LD g = dt + a * sa * (std::sin(dE) - dE);
  const LD fd = -sa / (r * r0) * std::sin(dE);
  const LD gd = 1.0L - a / r * (1.0L - std::cos(dE));
  for (int i = 0; i < 3; ++i) {
    rv[i] = static_cast<double>(f * rv0[i] + g * rv0[3 + i]);
    rv[3 + i] = static_cast<double>(fd * rv0[i] + gd * rv0[3 + i]);
  }
}

// An inclined ellipse (a = 1.3 AU, e = 0.25) in canonical units, as position/velocity.
inline void ellipse_state(double* y) {
  const double a = 1.3, e = 0.25, inc = 0.3, raan = 0.7, argp = 1.1, f = 0.4;
  const double p = a * (1.0 - e * e);
  const double r = p / (1.0 + e * std::cos(f));
  const double u = argp + f;
  const double cO = std::cos(raan), sO = std::sin(raan), ci = std::cos(inc), si = std::sin(inc);
  const double cu = std::cos(u), su = std::sin(u);
  y[0] = r * (cO * cu - sO * su * ci);
  y[1] = r * (sO * cu + cO * su * ci);
  y[2] = r * (su * si);
  const double vr = std::sqrt(1.0 / p) * e * std::sin(f);
  const double vt = std::sqrt(1.0 / p) * (1.0 + e * std::cos(f));
  y[3] = vr * y[0] / r + vt * (-cO * su - sO * cu * ci);
  y[4] = vr * y[1] / r + vt * (-sO * su + cO * cu * ci);
  y[5] = vr * y[2] / r + vt * (cu * si);
  y[6] = 1000.0;
}

}  // namespace kavren::test
