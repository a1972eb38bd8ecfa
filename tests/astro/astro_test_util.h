// Helpers shared by the toolkit's tests: the relative-error judge, seeded random states
// and an independent fixed-step integration of the two-body problem.
#pragma once

#include <algorithm>
#include <cmath>
#include <random>
#include <sstream>
#include <string>

namespace astro_test {

constexpr double kPi = 3.14159265358979323846;
constexpr double kTwoPi = 2.0 * kPi;
constexpr double kMuSun = 132712440018.0;
constexpr double kAU = 149597870.691;
constexpr double kDeg = kPi / 180.0;

inline double rel_err(double a, double b) {
  return std::fabs(a - b) / std::max({1.0, std::fabs(a), std::fabs(b)});
}

// Largest relative error over six components, each judged against the magnitude of its
// own triple (position or velocity), so that a small component is not over-weighted.
inline double rv_err(const double* a, const double* b) {
  double worst = 0.0;
  for (int part = 0; part < 2; ++part) {
    const double* x = a + 3 * part;
    const double* y = b + 3 * part;
    const double scale = std::max({1.0, std::sqrt(x[0] * x[0] + x[1] * x[1] + x[2] * x[2]),
                                   std::sqrt(y[0] * y[0] + y[1] * y[1] + y[2] * y[2])});
    for (int k = 0; k < 3; ++k) worst = std::max(worst, std::fabs(x[k] - y[k]) / scale);
  }
  return worst;
}

// Distance between two angles on the circle.
inline double angle_diff(double a, double b) {
  double d = std::fmod(a - b, kTwoPi);
  if (d > kPi) d -= kTwoPi;
  if (d < -kPi) d += kTwoPi;
  return std::fabs(d);
}

inline std::string show(const double* x, int n = 6) {
  std::ostringstream os;
  os.precision(17);
  for (int k = 0; k < n; ++k) os << (k ? ", " : "") << x[k];
  return os.str();
}

// Two-body motion by classical RK4 with n equal steps (independent of the toolkit).
inline void integrate_two_body(double* rv, double mu, double dt, int n) {
  auto deriv = [mu](const double* y, double* d) {
    const double r = std::sqrt(y[0] * y[0] + y[1] * y[1] + y[2] * y[2]);
    const double k = -mu / (r * r * r);
    for (int j = 0; j < 3; ++j) {
      d[j] = y[j + 3];
      d[j + 3] = k * y[j];
    }
  };
  const double h = dt / n;
  for (int s = 0; s < n; ++s) {
    double k1[6], k2[6], k3[6], k4[6], y[6];
    deriv(rv, k1);
    for (int j = 0; j < 6; ++j) y[j] = rv[j] + 0.5 * h * k1[j];
    deriv(y, k2);
    for (int j = 0; j < 6; ++j) y[j] = rv[j] + 0.5 * h * k2[j];
    deriv(y, k3);
    for (int j = 0; j < 6; ++j) y[j] = rv[j] + h * k3[j];
    deriv(y, k4);
    for (int j = 0; j < 6; ++j) rv[j] += h / 6.0 * (k1[j] + 2.0 * k2[j] + 2.0 * k3[j] + k4[j]);
  }
}

// Specific orbital energy and angular momentum vector of a state.
inline double energy(const double* rv, double mu) {
  const double r = std::sqrt(rv[0] * rv[0] + rv[1] * rv[1] + rv[2] * rv[2]);
  const double v2 = rv[3] * rv[3] + rv[4] * rv[4] + rv[5] * rv[5];
  return 0.5 * v2 - mu / r;
}

// A random heliocentric state: position 0.3..5 AU in a random direction, velocity in a
// random direction with speed between 0.2 and 1.8 times the local circular speed
// (ellipses of every shape and hyperbolas alike).
inline void random_state(std::mt19937_64& rng, double* rv) {
  std::uniform_real_distribution<double> unit(-1.0, 1.0);
  auto direction = [&](double* d) {
    double n2;
    do {
      for (int k = 0; k < 3; ++k) d[k] = unit(rng);
      n2 = d[0] * d[0] + d[1] * d[1] + d[2] * d[2];
    } while (n2 < 1e-4 || n2 > 1.0);
    const double n = std::sqrt(n2);
    for (int k = 0; k < 3; ++k) d[k] /= n;
  };
  double u[3], w[3];
  direction(u);
  direction(w);
  const double r = kAU * std::uniform_real_distribution<double>(0.3, 5.0)(rng);
  const double v = std::sqrt(kMuSun / r) * std::uniform_real_distribution<double>(0.2, 1.8)(rng);
  for (int k = 0; k < 3; ++k) {
    rv[k] = r * u[k];
    rv[k + 3] = v * w[k];
  }
}

}  // namespace astro_test
