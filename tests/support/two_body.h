// Independent references for the orbit toolkit's tests: the relative-error judges, seeded
// random states and a plain fixed-step RK4.
#pragma once

#include <algorithm>
#include <cmath>
#include <random>
#include <sstream>
#include <string>

namespace kavren::test {

constexpr double kPi = 3.14159265358979323846;
constexpr double kTwoPi = 2.0 * kPi;
constexpr double kMuSun = 132712440018.0;
constexpr double kAU = 149597870.691;
constexpr double kDeg = kPi / 180.0;

inline double rel_err(double a, double b) {
  return std::fabs(a - b) / std::max({1.0, std::fabs(a), std::fabs(b)});
}

// Largest error of six components, each judged against the size of its own triple.
inline double rv_err(const double* a, const double* b) {
  double worst = 0.0;
  for (int part = 0; part < 6; part += 3) {
    const double scale = std::max({1.0, std::hypot(a[part], a[part + 1], a[part + 2]),
                                   std::hypot(b[part], b[part + 1], b[part + 2])});
    for (int k = part; k < part + 3; ++k) worst = std::max(worst, std::fabs(a[k] - b[k]) / scale);
  }
  return worst;
}

// Distance between two angles on the circle.
inline double angle_diff(double a, double b) {
  return std::fabs(std::remainder(a - b, kTwoPi));
}

inline std::string show(const double* x, int n = 6) {
  std::ostringstream os;
  os.precision(17);
  for (int k = 0; k < n; ++k) os << (k ? ", " : "") << x[k];
  return os.str();
}

// Point mass mu plus the zonal term J2 of a body of radius R (J2 = 0: two-body motion).
struct Gravity {
  double mu, J2 = 0.0, R = 0.0;
  void operator()(double, const double* y, double* dy) const {
    const double r2 = y[0] * y[0] + y[1] * y[1] + y[2] * y[2];
    const double zr2 = y[2] * y[2] / r2;
    const double k = 1.5 * J2 * R * R / r2;
    const double g = -mu / (r2 * std::sqrt(r2));
    for (int j = 0; j < 3; ++j) dy[j] = y[j + 3];
    dy[3] = g * y[0] * (1.0 + k * (1.0 - 5.0 * zr2));
    dy[4] = g * y[1] * (1.0 + k * (1.0 - 5.0 * zr2));
    dy[5] = g * y[2] * (1.0 + k * (3.0 - 5.0 * zr2));
  }
};

// n classical RK4 steps of y' = f(t, y) (Dim components) from t0 over dt.
template <int Dim, class F>
void rk4(const F& f, double t0, double dt, int n, double* y) {
  const double h = dt / n;
  for (int s = 0; s < n; ++s) {
    const double t = t0 + s * h;
    double k1[Dim], k2[Dim], k3[Dim], k4[Dim], z[Dim];
    f(t, y, k1);
    for (int j = 0; j < Dim; ++j) z[j] = y[j] + 0.5 * h * k1[j];
    f(t + 0.5 * h, z, k2);
    for (int j = 0; j < Dim; ++j) z[j] = y[j] + 0.5 * h * k2[j];
    f(t + 0.5 * h, z, k3);
    for (int j = 0; j < Dim; ++j) z[j] = y[j] + h * k3[j];
    f(t + h, z, k4);
    for (int j = 0; j < Dim; ++j) y[j] += h / 6.0 * (k1[j] + 2.0 * k2[j] + 2.0 * k3[j] + k4[j]);
  }
}

// The largest turn of a flyby of planet `id` (-2 Venus, -3 Earth, -4 Mars) at excess speed
// vinf (km/s): the hyperbola whose periapsis lies 300 km above the planet's radius has
// eccentricity e = 1 + rp vinf^2 / mu, and its asymptotes are 2 asin(1 / e) apart.
inline double largest_flyby_turn(int id, double vinf) {
  const double mu = id == -2 ? 324858.592 : id == -3 ? 398600.435436 : 42828.375214;  // km^3/s^2
  const double radius = id == -2 ? 6051.0 : id == -3 ? 6378.0 : 3389.0;               // km
  const double e = 1.0 + (radius + 300.0) * vinf * vinf / mu;
  return 2.0 * std::asin(1.0 / e);
}

// `v` of length `speed` turned by `angle` (rad) about an axis normal to it: a unit vector
// along v x z (v must not point along z) turns v into v cos(angle) + (axis x v) sin(angle).
inline void turned(const double* v, double speed, double angle, double* out) {
  const double n = std::hypot(v[0], v[1]);
  const double axis[3] = {v[1] / n, -v[0] / n, 0.0};
  const double cross[3] = {axis[1] * v[2] - axis[2] * v[1], axis[2] * v[0] - axis[0] * v[2],
                           axis[0] * v[1] - axis[1] * v[0]};
  const double scale = speed / std::hypot(v[0], v[1], v[2]);
  for (int k = 0; k < 3; ++k) {
    out[k] = scale * (v[k] * std::cos(angle) + cross[k] * std::sin(angle));
  }
}

// A heliocentric state 0.3..5 AU from the Sun in a random direction, moving in a random
// direction at 0.2 to 1.8 times the local circular speed: ellipses and hyperbolas alike.
inline void random_state(std::mt19937_64& rng, double* rv) {
  std::normal_distribution<double> gauss;
  const double r = kAU * std::uniform_real_distribution<double>(0.3, 5.0)(rng);
  const double v = std::sqrt(kMuSun / r) * std::uniform_real_distribution<double>(0.2, 1.8)(rng);
  for (int part = 0; part < 6; part += 3) {
    double d[3] = {gauss(rng), gauss(rng), gauss(rng)};
    const double n = std::hypot(d[0], d[1], d[2]);
    for (int k = 0; k < 3; ++k) rv[part + k] = (part ? v : r) * d[k] / n;
  }
}

}  // namespace kavren::test
