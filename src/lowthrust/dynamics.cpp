#include "lowthrust/dynamics.h"

#include <cmath>

#include "astro/constants.h"
#include "kavren/limits.h"

namespace kavren {
namespace {

// Two doubles side by side: element-wise IEEE arithmetic, each lane rounded exactly as
// the scalar operation, so the pair below gives the scalar form's bits.
typedef double Pair __attribute__((vector_size(16)));

// dy[0..2] and the distance to the Sun.
inline double velocity_and_distance(const double* y, double* dy) {
  dy[0] = y[3];
  dy[1] = y[4];
  dy[2] = y[5];
  return std::sqrt(y[0] * y[0] + y[1] * y[1] + y[2] * y[2]);
}

}  // namespace

void CoastModel::operator()(double, const double* y, double* dy) {
  ++evaluations;
  const double r = velocity_and_distance(y, dy);
  if (r < min_distance) min_distance = r;
  // Computed in 64 bits: a reference near INT_MAX must not overflow.
  if (r < kMinSunDistance) throw SunApproach{line + 1, line + 2, r};
  for (int i = 0; i < 3; ++i) dy[3 + i] = ((-y[i] / r) / r) / r;
  dy[6] = 0.0;
}

double ThrustModel::thrust(double t, double* u) {
  interpolate_thrust(table, t, hint, u);
  // Interpolation may overshoot between table points; the engine never gives more.
  double u_norm = std::sqrt(u[0] * u[0] + u[1] * u[1] + u[2] * u[2]);
  if (u_norm > kThrustCap) {
    const double factor = kThrustCap / u_norm;
    for (int axis = 0; axis < 3; ++axis) u[axis] = u[axis] * factor;
    u_norm = kThrustCap;
  }
  return u_norm;
}

void ThrustModel::operator()(double t, const double* y, double* dy) {
  ++evaluations;
  double u[3];
  const double u_norm = thrust(t, u);
  const double r = velocity_and_distance(y, dy);
  if (r < min_distance) min_distance = r;
  if (r < kMinSunDistance) {
    // The lines named are those around t in the table; the second is offset by the
    // table's length. All in 64 bits so that no reference or count can overflow.
    const long long i = thrust_interval(table, t, hint);
    if (i >= 0) throw SunApproach{line + i + 1, line + i + table.n, r};
    throw SunApproach{line + 1, line + table.n, r};
  }
  // dy[3+i] = ((u_i * kKilonewtonsPerNewton) / m) / kACC - ((y_i / r) / r) / r, x and y as a pair,
  // z alone; the mass falls with the exhaust speed Isp * g0.
  const double m = y[6];
  const Pair mm = {m, m};
  const Pair rr = {r, r};
  const Pair acc = ((Pair{u[0], u[1]} * kKilonewtonsPerNewton) / mm) / kACC -
                   ((Pair{y[0], y[1]} / rr) / rr) / rr;
  dy[3] = acc[0];
  dy[4] = acc[1];
  dy[5] = ((u[2] * kKilonewtonsPerNewton) / m) / kACC - ((y[2] / r) / r) / r;
  dy[6] = ((-u_norm * kKilonewtonsPerNewton / kSpecificImpulse) / kStandardGravity) * kTU;
}

std::string sun_approach_message(const SunApproach& at) {
  return "Error101. Position Error between line " + std::to_string(at.first_line) + " and line " +
         std::to_string(at.second_line) +
         ": The distance to the Sun of the mining ship is less than 0.3 AU.\n";
}

}  // namespace kavren
