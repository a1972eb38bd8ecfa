// Gravity assists at Venus, the Earth and Mars: the two lines of the pass must be one
// instant and one place at the planet, the pass must keep the speed relative to the
// planet and may turn it no more than a pass at the planet's minimum radius could.
#include <cmath>

#include "astro/ephemeris.h"
#include "events/event_messages.h"
#include "records/records.h"

namespace {

using kavren::events::print_line_error;

constexpr int kEarth = -3;
constexpr double kSpeedTolerance = 0.001;  // km/s between incoming and outgoing excess speed
constexpr double kAngleMargin = 1e-30;     // rad

}  // namespace

bool FlybyClass::check_2lines_trm() const {
  double dt = 0.0, dr = 0.0, dv = 0.0, dm = 0.0;
  get_error_2structs(state_before, state_after, dt, dr, dv, dm);
  if (dt > kavren::events::kEpochTolerance) {
    print_line_error("Error601. Data Error of the event of flyby on the line",
                     state_after.line_index, kavren::events::kTimeDiffers);
    return false;
  }
  if (dr > kavren::events::kPositionTolerance) {
    print_line_error("Error602. Data Error of the event of flyby on the line",
                     state_after.line_index, kavren::events::kPositionDiffers);
    return false;
  }
  // Resources are dropped at the Earth, so the mass may change there.
  if (dm > kavren::events::kMassTolerance && body_id != kEarth) {
    print_line_error("Error603. Data Error of the event of flyby on the line",
                     state_after.line_index, kavren::events::kMassDiffers);
    return false;
  }
  return true;
}

bool FlybyClass::check_r_ifequal2Star() const {
  double dr_before = 0.0, dv_before = 0.0, dr_after = 0.0, dv_after = 0.0;
  err_state_ship(body_id, state_before, dr_before, dv_before);
  err_state_ship(body_id, state_after, dr_after, dv_after);
  const char* const position_error =
      ": The position error with the flyby planet exceeds the allowable range.";
  if (dr_before > kavren::events::kPositionTolerance) {
    print_line_error("Error604. Data Error of the event of flyby on the line",
                     state_before.line_index, position_error);
    return false;
  }
  if (dr_after > kavren::events::kPositionTolerance) {
    print_line_error("Error604. Data Error of the event of flyby on the line",
                     state_after.line_index, position_error);
    return false;
  }
  return true;
}

bool FlybyClass::check_flyby() {
  // One planet state, at the arrival epoch, serves both excess velocities. A planet
  // whose ephemeris fails is taken at rest at the Sun.
  double planet[6] = {0.0, 0.0, 0.0, 0.0, 0.0, 0.0};
  int flag = 0;
  getrv_stats_asteroids(flag, planet, body_id, state_before.epoch);
  const double vin[3] = {state_before.v[0] - planet[3], state_before.v[1] - planet[4],
                         state_before.v[2] - planet[5]};
  const double vout[3] = {state_after.v[0] - planet[3], state_after.v[1] - planet[4],
                          state_after.v[2] - planet[5]};
  const double vin_norm = std::sqrt(vin[0] * vin[0] + vin[1] * vin[1] + vin[2] * vin[2]);
  const double vout_norm = std::sqrt(vout[0] * vout[0] + vout[1] * vout[1] + vout[2] * vout[2]);
  // The speed test comes before the turn test.
  if (std::fabs(vin_norm - vout_norm) > kSpeedTolerance) {
    print_line_error("Error607. Data Error of the event of flyby on the line",
                     state_before.line_index,
                     ": The magnitudes of the hyperbolic excess velocity before and after the "
                     "flyby are different.");
    return false;
  }
  double angle = 0.0, max_angle = 0.0;
  // A pass too slow to define a direction has no turn to test and records nothing.
  if (!get_angle_2vinfs(body_id, vin, vout, angle, max_angle)) return true;
  if (angle > max_angle + kAngleMargin) {
    print_line_error("Error605. Data Error of the event of flyby on the line",
                     state_before.line_index,
                     ": The direction change angle of the flyby exceeded the maximum value.");
    return false;
  }
  vinf_magnitude = vin_norm;
  return true;
}

bool FlybyClass::check_flybyevent() {
  return check_2lines_trm() && check_r_ifequal2Star() && check_flyby();
}
