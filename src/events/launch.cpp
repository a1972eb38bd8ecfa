// Launch from the Earth: the two lines of the departure must be one instant and one
// place, the ship not heavier than allowed, the departure speed relative to the Earth
// small enough, and the ship on the Earth.
#include <cmath>

#include "events/encounters.h"
#include "events/event_checks.h"
#include "events/event_text.h"
#include "kavren/limits.h"

namespace kavren {

bool launch_pair(const LaunchClass& launch, EventContext& c) {
  double dt = 0.0, dr = 0.0, dv = 0.0, dm = 0.0;
  get_error_2structs(launch.state_before, launch.state_after, dt, dr, dv, dm);
  const long long before = printed_line(launch.state_before.line_index);
  const long long after = printed_line(launch.state_after.line_index);
  Findings& f = c.findings;
  auto pair_message = [&](const char* code, const char* suffix) {
    return [=] { return event_message(code, "launch", after, suffix); };
  };
  if (!f.check(Rule::launch_time, !(dt > kEpochTolerance), dt, kEpochTolerance, {after, before},
               c.ship, pair_message("Error501", kTimeDiffers))) {
    return false;
  }
  if (!f.check(Rule::launch_position, !(dr > kPositionTolerance), dr, kPositionTolerance,
               {after, before}, c.ship, pair_message("Error502", kPositionDiffers))) {
    return false;
  }
  // The launch changes the velocity, so only the mass is compared besides.
  return f.check(Rule::launch_mass, !(dm > kMassTolerance), dm, kMassTolerance, {after, before},
                 c.ship, pair_message("Error503", kMassDiffers));
}

bool launch_mass(const LaunchClass& launch, EventContext& c) {
  const double mass = launch.state_before.mass;
  const long long line = printed_line(launch.state_before.line_index);
  return c.findings.check(Rule::launch_initial_mass, !(mass > kMaxLaunchMass), mass, kMaxLaunchMass,
                          {line}, c.ship, [&] {
                            return event_message(
                                "Error504", "launch", line,
                                ": Initial mass of Mining Ship is greater than the limit value.");
                          });
}

bool launch_speed(const LaunchClass& launch, EventContext& c) {
  const double dvx = launch.state_after.v[0] - launch.state_before.v[0];
  const double dvy = launch.state_after.v[1] - launch.state_before.v[1];
  const double dvz = launch.state_after.v[2] - launch.state_before.v[2];
  const double speed = std::sqrt(dvx * dvx + dvy * dvy + dvz * dvz);
  const long long line = printed_line(launch.state_before.line_index);
  return c.findings.check(
      Rule::launch_speed, !(speed > kMaxExcessSpeed), speed, kMaxExcessSpeed,
      {line, printed_line(launch.state_after.line_index)}, c.ship, [&] {
        return event_message("Error505", "launch", line,
                             ": The hyperbolic excess velocity of the ship relative to the Earth "
                             "should not be larger than 6.0 km/s  at the moment of launch.");
      });
}

bool launch_at_earth(const LaunchClass& launch, EventContext& c) {
  double dr_before = 0.0, dv_before = 0.0, dr_after = 0.0, dv_after = 0.0;
  state_error(launch.body_id, launch.state_before, c.asteroids, dr_before, dv_before);
  state_error(launch.body_id, launch.state_after, c.asteroids, dr_after, dv_after);
  Findings& f = c.findings;
  const long long before = printed_line(launch.state_before.line_index);
  const long long after = printed_line(launch.state_after.line_index);
  auto position_message = [](long long line) {
    return [=] {
      return event_message("Error506", "launch", line,
                           ": The position error with the Earth exceeds the allowable range.");
    };
  };
  if (!f.check(Rule::launch_earth_position, !(dr_before > kPositionTolerance), dr_before,
               kPositionTolerance, {before}, c.ship, position_message(before))) {
    return false;
  }
  if (!f.check(Rule::launch_earth_position, !(dr_after > kPositionTolerance), dr_after,
               kPositionTolerance, {after}, c.ship, position_message(after))) {
    return false;
  }
  // Only the first line rides with the Earth; the second carries the excess velocity.
  return f.check(Rule::launch_earth_velocity, !(dv_before > kVelocityTolerance), dv_before,
                 kVelocityTolerance, {before}, c.ship, [&] {
                   return event_message(
                       "Error507", "launch", before,
                       ": The velocity error with the Earth exceeds the allowable range.");
                 });
}

}  // namespace kavren
