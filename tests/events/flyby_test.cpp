#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <string>

#include "events_test_util.h"

namespace {

using events_test::body_state;
using events_test::on_body;
using events_test::run;

constexpr double kEpoch = 66000.0;

std::string flyby_line(const char* code, int line, const std::string& suffix) {
  return std::string(code) + ". Data Error of the event of flyby on the line" +
         std::to_string(line) + suffix + "\n";
}

const std::string kTime =
    ": The time of two adjacent lines is different (exceeding the allowable error).";
const std::string kPosition =
    ": The position of two adjacent lines is different (exceeding the allowable error).";
const std::string kMass =
    ": The mass of two adjacent lines is different (exceeding the allowable error).";
const std::string kPlanetPosition =
    ": The position error with the flyby planet exceeds the allowable range.";
const std::string kSpeeds =
    ": The magnitudes of the hyperbolic excess velocity before and after the flyby are "
    "different.";
const std::string kTurn = ": The direction change angle of the flyby exceeded the maximum value.";

// A pass of planet id on file lines 21 and 22 with excess velocities vin and vout
// relative to the planet at the arrival epoch.
FlybyClass pass(int id, std::array<double, 3> vin, std::array<double, 3> vout) {
  FlybyClass flyby;
  flyby.body_id = id;
  flyby.state_before = on_body(id, kEpoch, 20, 1800.0);
  flyby.state_after = flyby.state_before;
  flyby.state_after.line_index = 21;
  for (int k = 0; k < 3; ++k) {
    flyby.state_before.v[k] += vin[k];
    flyby.state_after.v[k] += vout[k];
  }
  flyby.vinf_magnitude = -7.0;  // marks "not written"
  return flyby;
}

// A turn by `angle` in the x-y plane of an excess velocity `speed` along x.
FlybyClass turned(int id, double speed, double angle) {
  return pass(id, {speed, 0.0, 0.0}, {speed * std::cos(angle), speed * std::sin(angle), 0.0});
}

double largest_turn(double mu, double rp, double speed) {
  return 2.0 * std::asin(mu / (speed * speed * rp + mu));
}

TEST(FlybyChecks, TwoLinesAtTheirLimits) {
  FlybyClass flyby;
  flyby.body_id = -4;
  flyby.state_before.line_index = 7;
  flyby.state_after.line_index = 8;
  flyby.state_after.epoch = 1e-08;
  flyby.state_after.r[1] = 1000.0;
  flyby.state_after.mass = 0.001;
  flyby.state_after.v[0] = 9.0;  // the flyby changes the velocity: not compared
  auto outcome = run([&] { return flyby.check_2lines_trm(); });
  EXPECT_TRUE(outcome.result);
  EXPECT_EQ(outcome.out, "");

  FlybyClass late = flyby;
  late.state_after.epoch = std::nextafter(1e-08, 1.0);
  EXPECT_EQ(run([&] { return late.check_2lines_trm(); }).out, flyby_line("Error601", 9, kTime));
  FlybyClass apart = flyby;
  apart.state_after.r[1] = std::nextafter(1000.0, 2000.0);
  EXPECT_EQ(run([&] { return apart.check_2lines_trm(); }).out,
            flyby_line("Error602", 9, kPosition));
  FlybyClass lighter = flyby;
  lighter.state_after.mass = 0.0011;
  outcome = run([&] { return lighter.check_2lines_trm(); });
  EXPECT_FALSE(outcome.result);
  EXPECT_EQ(outcome.out, flyby_line("Error603", 9, kMass));
}

TEST(FlybyChecks, MassMayChangeOnlyAtTheEarth) {
  for (int id : {-3, -4, -2}) {
    SCOPED_TRACE(id);
    FlybyClass flyby = turned(id, 4.0, 0.01);
    flyby.state_after.mass = flyby.state_before.mass - 200.0;  // resources dropped
    const auto outcome = run([&] { return flyby.check_2lines_trm(); });
    if (id == -3) {
      EXPECT_TRUE(outcome.result);
      EXPECT_EQ(outcome.out, "");
    } else {
      EXPECT_FALSE(outcome.result);
      EXPECT_EQ(outcome.out, flyby_line("Error603", 22, kMass));
    }
  }
}

TEST(FlybyChecks, ShipMustBeAtThePlanetOnBothLines) {
  FlybyClass flyby = turned(-2, 5.0, 0.1);
  flyby.state_before.r[0] += 999.9;
  flyby.state_after.r[2] -= 999.9;
  EXPECT_TRUE(run([&] { return flyby.check_r_ifequal2Star(); }).result);

  FlybyClass after_off = turned(-2, 5.0, 0.1);
  after_off.state_after.r[1] += 1500.0;
  auto outcome = run([&] { return after_off.check_r_ifequal2Star(); });
  EXPECT_FALSE(outcome.result);
  EXPECT_EQ(outcome.out, flyby_line("Error604", 22, kPlanetPosition));

  FlybyClass both_off = after_off;
  both_off.state_before.r[1] -= 1500.0;
  outcome = run([&] { return both_off.check_r_ifequal2Star(); });
  EXPECT_EQ(outcome.out, flyby_line("Error604", 21, kPlanetPosition));
}

TEST(FlybyChecks, ExcessSpeedMustBeKept) {
  const double c = std::cos(0.1), s = std::sin(0.1);
  FlybyClass kept = pass(-4, {3.0, 0.0, 0.0}, {3.0009 * c, 3.0009 * s, 0.0});
  auto outcome = run([&] { return kept.check_flyby(); });
  EXPECT_TRUE(outcome.result);
  EXPECT_EQ(outcome.out, "");

  FlybyClass changed = pass(-4, {3.0, 0.0, 0.0}, {3.0011 * c, 3.0011 * s, 0.0});
  outcome = run([&] { return changed.check_flyby(); });
  EXPECT_FALSE(outcome.result);
  EXPECT_EQ(outcome.out, flyby_line("Error607", 21, kSpeeds));
  EXPECT_EQ(changed.vinf_magnitude, -7.0);

  // The speed test comes first even when the turn is impossible too.
  FlybyClass reversed = pass(-4, {3.0, 0.0, 0.0}, {-3.5, 0.0, 0.0});
  EXPECT_EQ(run([&] { return reversed.check_flyby(); }).out, flyby_line("Error607", 21, kSpeeds));
}

struct Planet {
  int id;
  double mu;
  double rp;
};

TEST(FlybyChecks, TurnIsBoundedByAPassAtTheMinimumRadius) {
  for (const Planet& planet : {Planet{-2, 324858.592, 6351.0}, Planet{-3, 398600.435436, 6678.0},
                               Planet{-4, 42828.375214, 3689.0}}) {
    SCOPED_TRACE(planet.id);
    const double limit = largest_turn(planet.mu, planet.rp, 5.0);
    FlybyClass inside = turned(planet.id, 5.0, limit * (1.0 - 1e-9));
    auto outcome = run([&] { return inside.check_flyby(); });
    EXPECT_TRUE(outcome.result);
    EXPECT_EQ(outcome.out, "");
    EXPECT_NEAR(inside.vinf_magnitude, 5.0, 1e-12);

    FlybyClass outside = turned(planet.id, 5.0, limit * (1.0 + 1e-9));
    outcome = run([&] { return outside.check_flyby(); });
    EXPECT_FALSE(outcome.result);
    EXPECT_EQ(outcome.out, flyby_line("Error605", 21, kTurn));
    EXPECT_EQ(outside.vinf_magnitude, -7.0);
  }
}

TEST(FlybyChecks, SlowPassHasNoTurnToTestAndRecordsNothing) {
  // Below 0.001 km/s the direction is meaningless: a right-angle turn passes.
  FlybyClass slow = pass(-3, {0.0005, 0.0, 0.0}, {0.0, 0.0005, 0.0});
  const auto outcome = run([&] { return slow.check_flyby(); });
  EXPECT_TRUE(outcome.result);
  EXPECT_EQ(outcome.out, "");
  EXPECT_EQ(slow.vinf_magnitude, -7.0);
}

TEST(FlybyChecks, BothExcessVelocitiesUseThePlanetAtArrival) {
  // The departure line a day later: Venus's velocity changes by about a kilometre per
  // second in that day, so only the arrival-epoch planet makes this a legal pass.
  FlybyClass flyby = turned(-2, 5.0, 0.05);
  flyby.state_after.epoch = kEpoch + 1.0;
  ASSERT_GT(std::fabs(body_state(-2, kEpoch + 1.0)[3] - body_state(-2, kEpoch)[3]) +
                std::fabs(body_state(-2, kEpoch + 1.0)[4] - body_state(-2, kEpoch)[4]),
            0.1);
  const auto outcome = run([&] { return flyby.check_flyby(); });
  EXPECT_TRUE(outcome.result);
  EXPECT_EQ(outcome.out, "");
}

TEST(FlybyChecks, EventStopsAtTheFirstFailingCheck) {
  FlybyClass flyby = turned(-4, 5.0, 3.0);  // impossible turn
  flyby.state_after.r[0] += 1500.0;         // and off the planet
  auto outcome = run([&] { return flyby.check_flybyevent(); });
  EXPECT_FALSE(outcome.result);
  EXPECT_EQ(outcome.out, flyby_line("Error602", 22, kPosition));

  flyby.state_before.r[0] += 1500.0;  // the pair agrees again, both off the planet
  outcome = run([&] { return flyby.check_flybyevent(); });
  EXPECT_EQ(outcome.out, flyby_line("Error604", 21, kPlanetPosition));

  FlybyClass good = turned(-4, 5.0, 0.2);
  outcome = run([&] { return good.check_flybyevent(); });
  EXPECT_TRUE(outcome.result);
  EXPECT_EQ(outcome.out, "");
  EXPECT_NEAR(good.vinf_magnitude, 5.0, 1e-12);
}

}  // namespace
