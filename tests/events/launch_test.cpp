#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>

#include "events_test_util.h"

namespace {

using events_test::on_body;
using events_test::run;

constexpr double kEpoch = 65000.0;

std::string launch_line(const char* code, long long line, const std::string& suffix) {
  return std::string(code) + ". Data Error of the event of launch on the line" +
         std::to_string(line) + suffix + "\n";
}

const std::string kTime =
    ": The time of two adjacent lines is different (exceeding the allowable error).";
const std::string kPosition =
    ": The position of two adjacent lines is different (exceeding the allowable error).";
const std::string kMass =
    ": The mass of two adjacent lines is different (exceeding the allowable error).";
const std::string kEarthPosition =
    ": The position error with the Earth exceeds the allowable range.";

// A departure from the Earth on file lines 11 and 12 with an excess speed of 3 km/s.
LaunchClass valid_launch() {
  LaunchClass launch;
  launch.body_id = 0;
  launch.state_before = on_body(0, kEpoch, 10, 2500.0);
  launch.state_after = launch.state_before;
  launch.state_after.line_index = 11;
  launch.state_after.v[1] += 3.0;
  return launch;
}

// Two lines away from any body, for the comparisons of the pair alone.
LaunchClass plain_pair() {
  LaunchClass launch;
  launch.state_before.line_index = 4;
  launch.state_after.line_index = 5;
  return launch;
}

TEST(LaunchChecks, ValidLaunchPassesSilently) {
  LaunchClass launch = valid_launch();
  const auto outcome = run([&] { return launch.check_launchevent(); });
  EXPECT_TRUE(outcome.result);
  EXPECT_EQ(outcome.out, "");
  EXPECT_FALSE(outcome.ended);
}

TEST(LaunchChecks, TwoLinesAtTheirLimits) {
  {
    LaunchClass launch = plain_pair();
    launch.state_after.epoch = 1e-08;  // exactly at the limit
    launch.state_after.r[0] = 600.0;   // 1000 km away, exactly
    launch.state_after.r[1] = -800.0;
    launch.state_after.mass = 0.001;
    launch.state_after.v[2] = 40.0;  // the launch changes the velocity: not compared
    const auto outcome = run([&] { return launch.check_2lines_trm(); });
    EXPECT_TRUE(outcome.result);
    EXPECT_EQ(outcome.out, "");
  }
  {
    LaunchClass launch = plain_pair();
    launch.state_after.epoch = std::nextafter(1e-08, 1.0);
    const auto outcome = run([&] { return launch.check_2lines_trm(); });
    EXPECT_FALSE(outcome.result);
    EXPECT_EQ(outcome.out, launch_line("Error501", 6, kTime));
  }
  {
    LaunchClass launch = plain_pair();
    launch.state_before.r[2] = std::nextafter(1000.0, 2000.0);
    const auto outcome = run([&] { return launch.check_2lines_trm(); });
    EXPECT_FALSE(outcome.result);
    EXPECT_EQ(outcome.out, launch_line("Error502", 6, kPosition));
  }
  {
    LaunchClass launch = plain_pair();
    launch.state_before.mass = 2500.0;
    launch.state_after.mass = 2500.0011;
    const auto outcome = run([&] { return launch.check_2lines_trm(); });
    EXPECT_FALSE(outcome.result);
    EXPECT_EQ(outcome.out, launch_line("Error503", 6, kMass));
  }
}

TEST(LaunchChecks, TwoLinesReportOnlyTheFirstMismatch) {
  LaunchClass launch = plain_pair();
  launch.state_after.r[0] = 5000.0;
  launch.state_after.mass = 10.0;
  const auto outcome = run([&] { return launch.check_2lines_trm(); });
  EXPECT_EQ(outcome.out, launch_line("Error502", 6, kPosition));
}

TEST(LaunchChecks, InitialMassLimitNamesTheFirstLine) {
  LaunchClass launch = valid_launch();
  launch.state_before.mass = 3000.0;
  EXPECT_TRUE(run([&] { return launch.check_initialmass(); }).result);
  launch.state_before.mass = 3000.0001;
  const auto outcome = run([&] { return launch.check_initialmass(); });
  EXPECT_FALSE(outcome.result);
  EXPECT_EQ(outcome.out,
            launch_line("Error504", 11,
                        ": Initial mass of Mining Ship is greater than the limit value."));
}

TEST(LaunchChecks, DepartureSpeedHasAMarginOverSixKilometresPerSecond) {
  const std::string message = launch_line(
      "Error505", 5,
      ": The hyperbolic excess velocity of the ship relative to the Earth should not be larger "
      "than 6.0 km/s  at the moment of launch.");
  LaunchClass launch = plain_pair();
  launch.state_after.v[0] = 6.001;  // exactly at the limit
  EXPECT_TRUE(run([&] { return launch.check_vinf(); }).result);
  launch.state_after.v[0] = std::nextafter(6.001, 7.0);
  auto outcome = run([&] { return launch.check_vinf(); });
  EXPECT_FALSE(outcome.result);
  EXPECT_EQ(outcome.out, message);

  // A jump of 6.0005 km/s on top of the Earth's velocity passes; 6.0011 km/s does not.
  launch = valid_launch();
  launch.state_after.v[0] = launch.state_before.v[0] + 3.6003;
  launch.state_after.v[1] = launch.state_before.v[1] - 4.8004;  // 6.0005 km/s in all
  EXPECT_TRUE(run([&] { return launch.check_vinf(); }).result);
  launch.state_after.v[1] = launch.state_before.v[1];
  launch.state_after.v[2] = launch.state_before.v[2] - 6.0011;
  outcome = run([&] { return launch.check_vinf(); });
  EXPECT_FALSE(outcome.result);
  EXPECT_EQ(outcome.out, launch_line("Error505", 11,
                                     ": The hyperbolic excess velocity of the ship relative to "
                                     "the Earth should not be larger than 6.0 km/s  at the "
                                     "moment of launch."));
}

TEST(LaunchChecks, ShipMustSitOnTheEarth) {
  {
    LaunchClass launch = valid_launch();
    launch.state_before.r[1] += 999.9;
    launch.state_after.r[2] -= 999.9;
    launch.state_after.v[0] += 100.0;  // the second line's velocity is never compared
    EXPECT_TRUE(run([&] { return launch.check_rv_ifequal2Earth(); }).result);
  }
  {
    LaunchClass launch = valid_launch();
    launch.state_before.r[0] += 1000.5;
    const auto outcome = run([&] { return launch.check_rv_ifequal2Earth(); });
    EXPECT_FALSE(outcome.result);
    EXPECT_EQ(outcome.out, launch_line("Error506", 11, kEarthPosition));
  }
  {
    // The second line's distance is tested before the first line's velocity.
    LaunchClass launch = valid_launch();
    launch.state_after.r[0] += 1000.5;
    launch.state_before.v[0] += 0.5;
    const auto outcome = run([&] { return launch.check_rv_ifequal2Earth(); });
    EXPECT_FALSE(outcome.result);
    EXPECT_EQ(outcome.out, launch_line("Error506", 12, kEarthPosition));
  }
  {
    LaunchClass launch = valid_launch();
    launch.state_before.v[2] += 0.0009;
    EXPECT_TRUE(run([&] { return launch.check_rv_ifequal2Earth(); }).result);
    launch.state_before.v[2] += 0.0002;
    const auto outcome = run([&] { return launch.check_rv_ifequal2Earth(); });
    EXPECT_FALSE(outcome.result);
    EXPECT_EQ(outcome.out,
              launch_line("Error507", 11,
                          ": The velocity error with the Earth exceeds the allowable range."));
  }
}

TEST(LaunchChecks, EarthComparisonUsesEachLinesOwnEpoch) {
  // The second line one day later, on the Earth of that day: passes only if each line
  // is compared at its own epoch (the Earth moves about 2.6 million km a day).
  LaunchClass launch = valid_launch();
  launch.state_after = on_body(0, kEpoch + 1.0, 11, 2500.0);
  EXPECT_TRUE(run([&] { return launch.check_rv_ifequal2Earth(); }).result);
}

TEST(LaunchChecks, EventStopsAtTheFirstFailingCheck) {
  {
    LaunchClass launch = valid_launch();
    launch.state_after.epoch += 1.0;    // 501
    launch.state_before.mass = 5000.0;  // 504 as well, never reached
    launch.state_after.mass = 5000.0;
    const auto outcome = run([&] { return launch.check_launchevent(); });
    EXPECT_FALSE(outcome.result);
    EXPECT_EQ(outcome.out, launch_line("Error501", 12, kTime));
  }
  {
    LaunchClass launch = valid_launch();
    launch.state_before.mass = 5000.0;
    launch.state_after.mass = 5000.0;
    launch.state_after.v[1] += 10.0;  // 505 as well, never reached
    const auto outcome = run([&] { return launch.check_launchevent(); });
    EXPECT_EQ(outcome.out,
              launch_line("Error504", 11,
                          ": Initial mass of Mining Ship is greater than the limit value."));
  }
  {
    LaunchClass launch = valid_launch();
    launch.state_after.v[1] += 10.0;
    launch.state_before.r[0] += 1.0e6;  // far from the Earth as well, never reached
    launch.state_after.r[0] += 1.0e6;
    const auto outcome = run([&] { return launch.check_launchevent(); });
    EXPECT_EQ(outcome.out, launch_line("Error505", 11,
                                       ": The hyperbolic excess velocity of the ship relative "
                                       "to the Earth should not be larger than 6.0 km/s  at "
                                       "the moment of launch."));
  }
}

TEST(LaunchChecks, NanPassesEveryLimit) {
  LaunchClass launch = valid_launch();
  const double nan = std::numeric_limits<double>::quiet_NaN();
  launch.state_before.mass = nan;
  launch.state_after.v[0] = nan;
  launch.state_after.epoch = nan;
  const auto outcome = run([&] {
    return launch.check_2lines_trm() && launch.check_initialmass() && launch.check_vinf();
  });
  EXPECT_TRUE(outcome.result);
  EXPECT_EQ(outcome.out, "");
}

TEST(LaunchChecks, LineNumbersDoNotOverflow) {
  LaunchClass launch = plain_pair();
  launch.state_after.line_index = std::numeric_limits<int>::max();
  launch.state_after.epoch = 1.0;
  const auto outcome = run([&] { return launch.check_2lines_trm(); });
  EXPECT_EQ(outcome.out, launch_line("Error501", 2147483648LL, kTime));
}

}  // namespace
