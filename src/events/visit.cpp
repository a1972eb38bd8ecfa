// Rendezvous with a catalogue asteroid: the two lines must be one instant, one place and
// one velocity, both matching the asteroid. The mass is free to change (a miner left
// behind, resources taken on).
#include "astro/ephemeris.h"
#include "events/event_messages.h"
#include "records/records.h"

namespace {

using kavren::events::print_line_error;

}  // namespace

bool VisitClass::check_2lines_trv() const {
  double dt = 0.0, dr = 0.0, dv = 0.0, dm = 0.0;
  get_error_2structs(state_before, state_after, dt, dr, dv, dm);
  if (dt > kavren::events::kEpochTolerance) {
    print_line_error("Error701. Data Error of the event of rendezvous on the line",
                     state_after.line_index, kavren::events::kTimeDiffers);
    return false;
  }
  if (dr > kavren::events::kPositionTolerance) {
    print_line_error("Error702. Data Error of the event of rendezvous on the line",
                     state_after.line_index, kavren::events::kPositionDiffers);
    return false;
  }
  if (dv > kavren::events::kVelocityTolerance) {
    print_line_error("Error703. Data Error of the event of rendezvous on the line",
                     state_after.line_index, kavren::events::kVelocityDiffers);
    return false;
  }
  return true;
}

bool VisitClass::check_rv_ifequal2asteroid() const {
  double dr_before = 0.0, dv_before = 0.0, dr_after = 0.0, dv_after = 0.0;
  err_state_ship(body_id, state_before, dr_before, dv_before);
  err_state_ship(body_id, state_after, dr_after, dv_after);
  const char* const prefix704 = "Error704. Data Error of the event of rendezvous on the line";
  const char* const prefix705 = "Error705. Data Error of the event of rendezvous on the line";
  const char* const position_error =
      ": The position error with the asteroid exceeds the allowable range.";
  const char* const velocity_error =
      ": The velocity error with the asteroid exceeds the allowable range.";
  if (dr_before > kavren::events::kPositionTolerance) {
    print_line_error(prefix704, state_before.line_index, position_error);
    return false;
  }
  if (dr_after > kavren::events::kPositionTolerance) {
    print_line_error(prefix704, state_after.line_index, position_error);
    return false;
  }
  if (dv_before > kavren::events::kVelocityTolerance) {
    print_line_error(prefix705, state_before.line_index, velocity_error);
    return false;
  }
  if (dv_after > kavren::events::kVelocityTolerance) {
    print_line_error(prefix705, state_after.line_index, velocity_error);
    return false;
  }
  return true;
}

bool VisitClass::check_visitevent() const {
  return check_2lines_trv() && check_rv_ifequal2asteroid();
}
