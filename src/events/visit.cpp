// Rendezvous with a catalogue asteroid: the two lines must be one instant, one place and
// one velocity, both matching the asteroid. The mass is free to change (a miner left
// behind, resources taken on).
#include "events/encounters.h"
#include "events/event_checks.h"
#include "events/event_text.h"
#include "kavren/limits.h"

namespace kavren {

bool visit_pair(const VisitClass& visit, EventContext& c) {
  double dt = 0.0, dr = 0.0, dv = 0.0, dm = 0.0;
  get_error_2structs(visit.state_before, visit.state_after, dt, dr, dv, dm);
  const long long before = printed_line(visit.state_before.line_index);
  const long long after = printed_line(visit.state_after.line_index);
  Findings& f = c.findings;
  auto pair_message = [&](const char* code, const char* suffix) {
    return [=] { return event_message(code, "rendezvous", after, suffix); };
  };
  if (!f.check(Rule::visit_time, !(dt > kEpochTolerance), dt, kEpochTolerance, {after, before},
               c.ship, pair_message("Error701", kTimeDiffers))) {
    return false;
  }
  if (!f.check(Rule::visit_position, !(dr > kPositionTolerance), dr, kPositionTolerance,
               {after, before}, c.ship, pair_message("Error702", kPositionDiffers))) {
    return false;
  }
  return f.check(Rule::visit_velocity, !(dv > kVelocityTolerance), dv, kVelocityTolerance,
                 {after, before}, c.ship, pair_message("Error703", kVelocityDiffers));
}

bool visit_at_asteroid(const VisitClass& visit, EventContext& c) {
  double dr_before = 0.0, dv_before = 0.0, dr_after = 0.0, dv_after = 0.0;
  state_error(visit.body_id, visit.state_before, c.asteroids, dr_before, dv_before);
  state_error(visit.body_id, visit.state_after, c.asteroids, dr_after, dv_after);
  const long long before = printed_line(visit.state_before.line_index);
  const long long after = printed_line(visit.state_after.line_index);
  auto position = [](long long line) {
    return [=] {
      return event_message("Error704", "rendezvous", line,
                           ": The position error with the asteroid exceeds the allowable range.");
    };
  };
  auto velocity = [](long long line) {
    return [=] {
      return event_message("Error705", "rendezvous", line,
                           ": The velocity error with the asteroid exceeds the allowable range.");
    };
  };
  Findings& f = c.findings;
  return f.check(Rule::visit_asteroid_position, !(dr_before > kPositionTolerance), dr_before,
                 kPositionTolerance, {before}, c.ship, position(before)) &&
         f.check(Rule::visit_asteroid_position, !(dr_after > kPositionTolerance), dr_after,
                 kPositionTolerance, {after}, c.ship, position(after)) &&
         f.check(Rule::visit_asteroid_velocity, !(dv_before > kVelocityTolerance), dv_before,
                 kVelocityTolerance, {before}, c.ship, velocity(before)) &&
         f.check(Rule::visit_asteroid_velocity, !(dv_after > kVelocityTolerance), dv_after,
                 kVelocityTolerance, {after}, c.ship, velocity(after));
}

}  // namespace kavren
