// Launch from the Earth: the two lines of the departure must be one instant and one
// place, the ship not heavier than allowed, the departure speed relative to the Earth
// small enough, and the ship on the Earth.
#include <cmath>

#include "astro/ephemeris.h"
#include "events/event_messages.h"
#include "records/records.h"

namespace {

using kavren::events::print_line_error;

constexpr double kMaxInitialMass = 3000.0;  // kg
// The departure speed limit is 6.0 km/s as announced, tested with 0.001 km/s of margin.
constexpr double kMaxLaunchSpeed = 6.001;  // km/s

}  // namespace

bool LaunchClass::check_2lines_trm() const {
  double dt = 0.0, dr = 0.0, dv = 0.0, dm = 0.0;
  get_error_2structs(state_before, state_after, dt, dr, dv, dm);
  if (dt > kavren::events::kEpochTolerance) {
    print_line_error("Error501. Data Error of the event of launch on the line",
                     state_after.line_index, kavren::events::kTimeDiffers);
    return false;
  }
  if (dr > kavren::events::kPositionTolerance) {
    print_line_error("Error502. Data Error of the event of launch on the line",
                     state_after.line_index, kavren::events::kPositionDiffers);
    return false;
  }
  // The launch changes the velocity, so only the mass is compared besides.
  if (dm > kavren::events::kMassTolerance) {
    print_line_error("Error503. Data Error of the event of launch on the line",
                     state_after.line_index, kavren::events::kMassDiffers);
    return false;
  }
  return true;
}

bool LaunchClass::check_initialmass() const {
  if (state_before.mass > kMaxInitialMass) {
    print_line_error("Error504. Data Error of the event of launch on the line",
                     state_before.line_index,
                     ": Initial mass of Mining Ship is greater than the limit value.");
    return false;
  }
  return true;
}

bool LaunchClass::check_vinf() const {
  const double dvx = state_after.v[0] - state_before.v[0];
  const double dvy = state_after.v[1] - state_before.v[1];
  const double dvz = state_after.v[2] - state_before.v[2];
  const double speed = std::sqrt(dvx * dvx + dvy * dvy + dvz * dvz);
  if (speed > kMaxLaunchSpeed) {
    print_line_error("Error505. Data Error of the event of launch on the line",
                     state_before.line_index,
                     ": The hyperbolic excess velocity of the ship relative to the Earth should "
                     "not be larger than 6.0 km/s  at the moment of launch.");
    return false;
  }
  return true;
}

bool LaunchClass::check_rv_ifequal2Earth() const {
  double dr_before = 0.0, dv_before = 0.0, dr_after = 0.0, dv_after = 0.0;
  err_state_ship(body_id, state_before, dr_before, dv_before);
  err_state_ship(body_id, state_after, dr_after, dv_after);
  const char* const position_error =
      ": The position error with the Earth exceeds the allowable range.";
  if (dr_before > kavren::events::kPositionTolerance) {
    print_line_error("Error506. Data Error of the event of launch on the line",
                     state_before.line_index, position_error);
    return false;
  }
  if (dr_after > kavren::events::kPositionTolerance) {
    print_line_error("Error506. Data Error of the event of launch on the line",
                     state_after.line_index, position_error);
    return false;
  }
  // Only the first line rides with the Earth; the second carries the excess velocity.
  if (dv_before > kavren::events::kVelocityTolerance) {
    print_line_error("Error507. Data Error of the event of launch on the line",
                     state_before.line_index,
                     ": The velocity error with the Earth exceeds the allowable range.");
    return false;
  }
  return true;
}

bool LaunchClass::check_launchevent() const {
  return check_2lines_trm() && check_initialmass() && check_vinf() && check_rv_ifequal2Earth();
}
