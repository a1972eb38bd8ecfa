#include "synth/lambert.h"

#include <cmath>

#include "astro/constants.h"

namespace synth {

double stumpff_c(double z) {
  if (z > 1e-3) return (1.0 - std::cos(std::sqrt(z))) / z;
  if (z < -1e-3) return (std::cosh(std::sqrt(-z)) - 1.0) / -z;
  // Near the parabola the closed forms cancel: sum the series instead.
  return 1.0 / 2.0 - z / 24.0 + z * z / 720.0 - z * z * z / 40320.0;
}

double stumpff_s(double z) {
  if (z > 1e-3) {
    const double s = std::sqrt(z);
    return (s - std::sin(s)) / (s * s * s);
  }
  if (z < -1e-3) {
    const double s = std::sqrt(-z);
    return (std::sinh(s) - s) / (s * s * s);
  }
  return 1.0 / 6.0 - z / 120.0 + z * z / 5040.0 - z * z * z / 362880.0;
}

bool lambert(const double* r1, const double* r2, double tof, double* v1, double* v2) {
  const double mu = kavren::kMuSun;
  if (!(tof > 0.0)) return false;
  const double n1 = std::sqrt(r1[0] * r1[0] + r1[1] * r1[1] + r1[2] * r1[2]);
  const double n2 = std::sqrt(r2[0] * r2[0] + r2[1] * r2[1] + r2[2] * r2[2]);
  if (!(n1 > 0.0) || !(n2 > 0.0)) return false;
  const double cross_z = r1[0] * r2[1] - r1[1] * r2[0];
  double cos_dnu = (r1[0] * r2[0] + r1[1] * r2[1] + r1[2] * r2[2]) / (n1 * n2);
  if (cos_dnu > 1.0) cos_dnu = 1.0;
  if (cos_dnu < -1.0) cos_dnu = -1.0;
  // Prograde about the ecliptic pole: the long way round when r2 lies clockwise of r1.
  const double sin_dnu = (cross_z >= 0.0 ? 1.0 : -1.0) * std::sqrt(1.0 - cos_dnu * cos_dnu);
  if (!(1.0 - cos_dnu > 1e-12) || !(std::fabs(sin_dnu) > 1e-12)) return false;
  const double A = sin_dnu * std::sqrt(n1 * n2 / (1.0 - cos_dnu));

  // y(z) and the time of flight it implies; the time grows monotonically with z over the
  // admissible range (y > 0, z below the first full revolution at 4 pi^2).
  auto y_of = [&](double z) {
    return n1 + n2 + A * (z * stumpff_s(z) - 1.0) / std::sqrt(stumpff_c(z));
  };
  auto tof_of = [&](double z, double& y) {
    y = y_of(z);
    if (!(y > 0.0)) return -1.0;  // below the admissible range: "too short"
    const double c = stumpff_c(z);
    const double chi = std::sqrt(y / c);
    return (chi * chi * chi * stumpff_s(z) + A * std::sqrt(y)) / std::sqrt(mu);
  };
  const double four_pi2 = 4.0 * kavren::kPi * kavren::kPi;
  double lo = -4.0 * four_pi2;
  // Close to a full revolution 1 - cos(sqrt z) loses every digit; the time of flight at
  // this margin is already far beyond any mission.
  double hi = four_pi2 - 1e-4;
  double y = 0.0;
  if (!(tof_of(lo, y) < tof)) return false;  // faster than the hyperbolas searched
  if (!(tof_of(hi, y) > tof)) return false;
  // Bisection: a fixed number of halvings, so the result does not depend on where a
  // Newton iteration would happen to land.
  for (int k = 0; k < 200; ++k) {
    const double mid = 0.5 * (lo + hi);
    if (mid <= lo || mid >= hi) break;
    if (tof_of(mid, y) < tof) {
      lo = mid;
    } else {
      hi = mid;
    }
  }
  const double z = 0.5 * (lo + hi);
  if (!(tof_of(z, y) > 0.0)) return false;
  const double f = 1.0 - y / n1;
  const double g = A * std::sqrt(y / mu);
  const double gdot = 1.0 - y / n2;
  for (int k = 0; k < 3; ++k) {
    v1[k] = (r2[k] - f * r1[k]) / g;
    v2[k] = (gdot * r2[k] - r1[k]) / g;
  }
  return true;
}

}  // namespace synth
