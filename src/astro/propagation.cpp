#include "astro/propagation.h"

#include <algorithm>
#include <cmath>
#include <iostream>

#include "astro/anomaly.h"
#include "astro/constants.h"
#include "astro/elements.h"

using kavren::kPi;
using kavren::kTwoPi;

namespace {

// "For a parabolic orbit the initial true anomaly must lie between -180 and 180
// degrees.", in GBK-encoded bytes: the toolkit's one message, in its users' language.
constexpr char kParabolicRangeMessage[] =
    "\xb6\xd4\xd3\xda\xc5\xd7\xce\xef\xcf\xdf\xb9\xec\xb5\xc0\x2c\xb3\xf5\xca\xbc\xd5\xe6"
    "\xbd\xfc\xb5\xe3\xbd\xc7\xd3\xa6\xd4\xda\x2d\x31\x38\x30\xd6\xc1\x31\x38\x30\xb6\xc8"
    "\xd6\xae\xbc\xe4\x2e";
static_assert(sizeof(kParabolicRangeMessage) == 47 + 1, "message is 47 bytes");

constexpr int kKeplerMaxIter = 100;
constexpr double kKeplerEpsilon = 1.0e-14;

// Eccentricity, longitude of periapsis and semi-major axis of an equinoctial set.
// A parabola gives an infinite a (p / 0), passed on as it is.
struct EquinoctialShape {
  double e;
  double varpi;
  double a;
};

EquinoctialShape equinoctial_shape(const double* ee) {
  EquinoctialShape s;
  s.e = std::sqrt(ee[1] * ee[1] + ee[2] * ee[2]);
  s.varpi = std::atan2(ee[2], ee[1]);
  s.a = ee[0] / std::fabs(1.0 - s.e * s.e);
  return s;
}

}  // namespace

double f0dt2ft(int& flag, double f0, double dt, double a, double e, double mu, int MaxIter,
               double epsilon) {
  if (e < 0.0 || a <= 0.0 || mu <= 0.0 || MaxIter < 1) {
    flag = 0;
    return f0;
  }
  if (e != 1.0) {
    const double E0 = f2E(flag, f0, e);
    if (flag == 0) return f0;
    const double M0 = E2M(flag, E0, e);
    const double M = M0dt2Mt(M0, mu, a, dt);
    const double E = M2E(flag, M, e, MaxIter, epsilon);
    if (flag == 0) return f0;
    const double f = E2f(flag, E, e);
    if (flag == 0) return f0;
    flag = 1;
    return f;
  }

  // Parabola by Barker's equation; a holds the periapsis distance q.
  if (f0 < -kPi || f0 > kPi) {
    std::cout << kParabolicRangeMessage << std::endl;
    flag = 0;
    return f0;
  }
  const double q = a;
  const double D0 = std::tan(f0 / 2.0);
  const double W = 0.5 * (D0 * D0 + 3.0) * D0 + 0.75 * std::sqrt(2.0 * mu / (q * q * q)) * dt;
  const double Y = W + std::sqrt(W * W + 1.0);
  double D;
  if (std::fabs(dt) >= kTwoPi * std::sqrt(q * q * q / mu) / 1000.0) {
    D = std::pow(Y, 1.0 / 3.0) - 1.0 / std::pow(Y, 1.0 / 3.0);
  } else {
    // Same root without the cancellation of the difference above on short arcs.
    const double Z = std::pow(Y, 2.0 / 3.0);
    D = 2.0 * W * Z / ((Z + 1.0) * Z + 1.0);
  }
  flag = 1;
  return 2.0 * std::atan(D);
}

double f0ft2dt(int& flag, double f0, double ft, double a, double e, double mu) {
  flag = 0;
  if (ft < f0 || e < 0.0 || a <= 0.0 || mu <= 0.0) return 0.0;
  if (e >= 1.0) {
    const double beta = kPi - std::acos(1.0 / e);
    // Past this test -beta <= f0 <= ft <= beta: both anomalies lie between the asymptotes.
    if (std::min(f0, ft) < -beta || ft > beta) return 0.0;
  }
  const double n = std::sqrt(mu / (a * a * a));
  if (e == 1.0) {
    const double D0 = std::tan(f0 / 2.0);
    const double Dt = std::tan(ft / 2.0);
    flag = 1;
    // 0.47140452079103173 = sqrt(2) / 3; a is the periapsis distance.
    return ((Dt * Dt + 3.0) * Dt - (D0 * D0 + 3.0) * D0) * 0.47140452079103173 / n;
  }
  // Within the range above f2E and E2M cannot refuse.
  int step_flag = 0;
  const double E0 = f2E(step_flag, f0, e);
  const double Et = f2E(step_flag, ft, e);
  const double M0 = E2M(step_flag, E0, e);
  const double Mt = E2M(step_flag, Et, e);
  flag = 1;
  return (Mt - M0) / n;
}

double L0dt2Lt(int& flag, double L0, double dt, const double* ee, double mu) {
  const EquinoctialShape s = equinoctial_shape(ee);
  return f0dt2ft(flag, L0 - s.varpi, dt, s.a, s.e, mu, kKeplerMaxIter, kKeplerEpsilon) + s.varpi;
}

double L0Lt2dt(int& flag, double L0, double Lt, const double* ee, double mu) {
  const EquinoctialShape s = equinoctial_shape(ee);
  return f0ft2dt(flag, L0 - s.varpi, Lt - s.varpi, s.a, s.e, mu);
}

void coe02coef(int& flag, double* coe_t, const double* coe0, double dt, double mu) {
  double coe[6];
  for (int k = 0; k < 6; ++k) coe[k] = coe0[k];
  // On failure element 5 keeps the returned f0; the flag tells.
  coe[5] = f0dt2ft(flag, coe0[5], dt, coe0[0], coe0[1], mu, kKeplerMaxIter, kKeplerEpsilon);
  for (int k = 0; k < 6; ++k) coe_t[k] = coe[k];
}

void rv02rvf(int& flag, double* rv_t, const double* rv0, double dt, double mu) {
  double coe[6];
  rv2coe(flag, coe, rv0, mu);
  if (flag == 0) return;
  const double f = f0dt2ft(flag, coe[5], dt, coe[0], coe[1], mu, kKeplerMaxIter, kKeplerEpsilon);
  if (flag == 0) return;
  coe[5] = std::fmod(f, kTwoPi);
  coe2rv(flag, rv_t, coe, mu);
}

void ee02eef(int& flag, double* ee_t, const double* ee0, double dt, double mu) {
  double coe[6];
  ee2coe(flag, coe, ee0, mu);
  if (flag == 0) return;
  const double f = f0dt2ft(flag, coe[5], dt, coe[0], coe[1], mu, kKeplerMaxIter, kKeplerEpsilon);
  if (flag == 0) return;
  coe[5] = std::fmod(f, kTwoPi);
  coe2ee(flag, ee_t, coe, mu);
}
