// Gravity assists at Venus, the Earth and Mars: the two lines of the pass must be one
// instant and one place at the planet, the pass must keep the speed relative to the
// planet and may turn it no more than a pass at the planet's minimum radius could.
#include <cmath>

#include "events/encounters.h"
#include "events/event_checks.h"
#include "events/event_text.h"
#include "kavren/limits.h"

namespace kavren {
namespace {
constexpr int kEarth = -3;
}  // namespace

bool flyby_pair(const FlybyClass& flyby, EventContext& c) {
  double dt = 0.0, dr = 0.0, dv = 0.0, dm = 0.0;
  get_error_2structs(flyby.state_before, flyby.state_after, dt, dr, dv, dm);
  const long long before = printed_line(flyby.state_before.line_index);
  const long long after = printed_line(flyby.state_after.line_index);
  Findings& f = c.findings;
  auto pair_message = [&](const char* code, const char* suffix) {
    return [=] { return event_message(code, "flyby", after, suffix); };
  };
  if (!f.check(Rule::flyby_time, !(dt > kEpochTolerance), dt, kEpochTolerance, {after, before},
               c.ship, pair_message("Error601", kTimeDiffers))) {
    return false;
  }
  if (!f.check(Rule::flyby_position, !(dr > kPositionTolerance), dr, kPositionTolerance,
               {after, before}, c.ship, pair_message("Error602", kPositionDiffers))) {
    return false;
  }
  // Resources are dropped at the Earth, so the mass may change there.
  if (flyby.body_id == kEarth) return true;
  return f.check(Rule::flyby_mass, !(dm > kMassTolerance), dm, kMassTolerance, {after, before},
                 c.ship, pair_message("Error603", kMassDiffers));
}

bool flyby_at_planet(const FlybyClass& flyby, EventContext& c) {
  double dr_before = 0.0, dv_before = 0.0, dr_after = 0.0, dv_after = 0.0;
  state_error(flyby.body_id, flyby.state_before, c.asteroids, dr_before, dv_before);
  state_error(flyby.body_id, flyby.state_after, c.asteroids, dr_after, dv_after);
  auto message = [](long long line) {
    return [=] {
      return event_message("Error604", "flyby", line,
                           ": The position error with the flyby planet exceeds the allowable "
                           "range.");
    };
  };
  const long long before = printed_line(flyby.state_before.line_index);
  const long long after = printed_line(flyby.state_after.line_index);
  if (!c.findings.check(Rule::flyby_planet_position, !(dr_before > kPositionTolerance), dr_before,
                        kPositionTolerance, {before}, c.ship, message(before))) {
    return false;
  }
  return c.findings.check(Rule::flyby_planet_position, !(dr_after > kPositionTolerance), dr_after,
                          kPositionTolerance, {after}, c.ship, message(after));
}

bool flyby_pass(FlybyClass& flyby, EventContext& c) {
  // One planet state, at the arrival epoch, serves both excess velocities. A planet
  // whose ephemeris fails is taken at rest at the Sun.
  double planet[6] = {0.0, 0.0, 0.0, 0.0, 0.0, 0.0};
  int flag = 0;
  body_state(flag, planet, flyby.body_id, flyby.state_before.epoch, c.asteroids);
  const StateStruct& in = flyby.state_before;
  const StateStruct& out = flyby.state_after;
  const double vin[3] = {in.v[0] - planet[3], in.v[1] - planet[4], in.v[2] - planet[5]};
  const double vout[3] = {out.v[0] - planet[3], out.v[1] - planet[4], out.v[2] - planet[5]};
  const double vin_norm = std::sqrt(vin[0] * vin[0] + vin[1] * vin[1] + vin[2] * vin[2]);
  const double vout_norm = std::sqrt(vout[0] * vout[0] + vout[1] * vout[1] + vout[2] * vout[2]);
  const long long line = printed_line(in.line_index);
  const long long after = printed_line(out.line_index);
  Findings& f = c.findings;
  // The speed test comes before the turn test.
  const double change = std::fabs(vin_norm - vout_norm);
  const bool speed_kept = !(change > kVelocityTolerance);
  if (!f.check(Rule::flyby_speed_change, speed_kept, change, kVelocityTolerance, {line, after},
               c.ship, [&] {
                 return event_message("Error607", "flyby", line,
                                      ": The magnitudes of the hyperbolic excess velocity before "
                                      "and after the flyby are different.");
               })) {
    return false;
  }
  double angle = 0.0, max_angle = 0.0;
  // A pass too slow to define a direction has no turn to test and records nothing.
  if (!get_angle_2vinfs(flyby.body_id, vin, vout, angle, max_angle)) return true;
  const double limit = max_angle + kFlybyTurnMargin;
  const bool turn_allowed = !(angle > limit);
  if (!f.check(Rule::flyby_turn, turn_allowed, angle, limit, {line, after}, c.ship, [&] {
        return event_message("Error605", "flyby", line,
                             ": The direction change angle of the flyby exceeded the maximum "
                             "value.");
      })) {
    return false;
  }
  if (speed_kept && turn_allowed) flyby.vinf_magnitude = vin_norm;
  return true;
}

}  // namespace kavren
