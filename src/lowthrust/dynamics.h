// Equations of motion of a ship in canonical units (LU = 1 AU, VU, TU = LU/VU, mu = 1).
// State: x, y, z, vx, vy, vz, m (kg). The ship may not come closer than 0.3 AU to the
// Sun: an evaluation there is a violation (Error101) naming the lines around it.
#pragma once

#include <cstdint>
#include <limits>
#include <string>

#include "lowthrust/thrust_table.h"

namespace kavren {

// Thrown by a model at an evaluation closer to the Sun than allowed; the lines are
// those Error101 prints (1-based).
struct SunApproach {
  long long first_line;
  long long second_line;
  double distance;  // AU
};
// Error101's message.
std::string sun_approach_message(const SunApproach& at);

// Sun gravity only. `line` is the line reference of the coast (0-based index).
struct CoastModel {
  long long line = 0;
  double min_distance = std::numeric_limits<double>::infinity();  // AU, closest so far
  std::uint64_t evaluations = 0;
  void operator()(double t, const double* y, double* dy);
  // Evaluations the integrator knows would repeat earlier ones: only counted.
  void spared(long long calls) { evaluations += static_cast<std::uint64_t>(calls); }
};

// Sun gravity plus the interpolated thrust of a table, capped at the engine's limit.
// `line` is the line reference of the phase (1-based number of its first thrust line).
struct ThrustModel {
  ThrustTable table;
  long long line = 0;
  long long hint = -1;
  double min_distance = std::numeric_limits<double>::infinity();
  std::uint64_t evaluations = 0;
  void operator()(double t, const double* y, double* dy);
  void spared(long long calls) { evaluations += static_cast<std::uint64_t>(calls); }
  // The capped thrust at t (N) into u; returns its magnitude.
  double thrust(double t, double* u);
};

}  // namespace kavren
