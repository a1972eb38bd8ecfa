#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "events_test_util.h"

namespace {

using events_test::on_body;
using events_test::run;

constexpr double kEpoch = 67000.0;

std::string visit_line(const char* code, int line, const std::string& suffix) {
  return std::string(code) + ". Data Error of the event of rendezvous on the line" +
         std::to_string(line) + suffix + "\n";
}

const std::string kTime =
    ": The time of two adjacent lines is different (exceeding the allowable error).";
const std::string kPosition =
    ": The position of two adjacent lines is different (exceeding the allowable error).";
const std::string kVelocity =
    ": The velocity of two adjacent lines is different (exceeding the allowable error).";
const std::string kAsteroidPosition =
    ": The position error with the asteroid exceeds the allowable range.";
const std::string kAsteroidVelocity =
    ": The velocity error with the asteroid exceeds the allowable range.";

class VisitChecks : public ::testing::Test {
 protected:
  // A rendezvous with asteroid id on file lines 31 and 32 that leaves a 40 kg miner.
  static VisitClass visit(int id) {
    VisitClass v;
    v.body_id = id;
    v.state_before = on_body(id, kEpoch, 30, 2500.0);
    v.state_after = on_body(id, kEpoch, 31, 2460.0);
    v.mass_change = -40.0;
    return v;
  }
  events_test::Catalogue catalogue_;
};

TEST_F(VisitChecks, MinerDeploymentPasses) {
  for (int id : {17, 60000}) {
    SCOPED_TRACE(id);
    VisitClass v = visit(id);
    v.state_after.mass = 2440.0;
    const auto outcome = run([&] { return v.check_visitevent(); });
    EXPECT_TRUE(outcome.result);
    EXPECT_EQ(outcome.out, "");
  }
}

TEST_F(VisitChecks, TwoLinesAtTheirLimits) {
  VisitClass v;
  v.body_id = 17;
  v.state_before.line_index = 2;
  v.state_after.line_index = 3;
  v.state_after.epoch = 1e-08;
  v.state_after.r[0] = 1000.0;
  v.state_after.v[2] = 0.001;
  v.state_after.mass = 1000.0;  // mass is free to change
  EXPECT_TRUE(run([&] { return v.check_2lines_trv(); }).result);

  VisitClass late = v;
  late.state_after.epoch = std::nextafter(1e-08, 1.0);
  auto outcome = run([&] { return late.check_2lines_trv(); });
  EXPECT_FALSE(outcome.result);
  EXPECT_EQ(outcome.out, visit_line("Error701", 4, kTime));
  VisitClass apart = v;
  apart.state_after.r[0] = std::nextafter(1000.0, 2000.0);
  EXPECT_EQ(run([&] { return apart.check_2lines_trv(); }).out,
            visit_line("Error702", 4, kPosition));
  VisitClass faster = v;
  faster.state_after.v[2] = std::nextafter(0.001, 1.0);
  EXPECT_EQ(run([&] { return faster.check_2lines_trv(); }).out,
            visit_line("Error703", 4, kVelocity));
}

TEST_F(VisitChecks, ShipMustMatchTheAsteroidOnBothLines) {
  VisitClass near = visit(17);
  near.state_before.r[0] += 999.9;
  near.state_after.r[0] += 999.9;
  near.state_before.v[1] += 0.0009;
  near.state_after.v[1] += 0.0009;
  EXPECT_TRUE(run([&] { return near.check_rv_ifequal2asteroid(); }).result);

  struct Case {
    const char* name;
    void (*spoil)(VisitClass&);
    std::string expected;
  };
  const Case cases[] = {
      {"first line far", [](VisitClass& v) { v.state_before.r[2] += 1000.5; },
       visit_line("Error704", 31, kAsteroidPosition)},
      {"second line far", [](VisitClass& v) { v.state_after.r[2] += 1000.5; },
       visit_line("Error704", 32, kAsteroidPosition)},
      {"first line fast", [](VisitClass& v) { v.state_before.v[0] += 0.0015; },
       visit_line("Error705", 31, kAsteroidVelocity)},
      {"second line fast", [](VisitClass& v) { v.state_after.v[0] += 0.0015; },
       visit_line("Error705", 32, kAsteroidVelocity)},
      // Both distances are tested before either velocity.
      {"first fast, second far",
       [](VisitClass& v) {
         v.state_before.v[0] += 0.0015;
         v.state_after.r[2] += 1000.5;
       },
       visit_line("Error704", 32, kAsteroidPosition)},
      {"both fast",
       [](VisitClass& v) {
         v.state_before.v[0] += 0.0015;
         v.state_after.v[0] += 0.0015;
       },
       visit_line("Error705", 31, kAsteroidVelocity)},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    VisitClass v = visit(17);
    c.spoil(v);
    const auto outcome = run([&] { return v.check_rv_ifequal2asteroid(); });
    EXPECT_FALSE(outcome.result);
    EXPECT_EQ(outcome.out, c.expected);
  }
}

TEST_F(VisitChecks, EachLineIsComparedAtItsOwnEpoch) {
  VisitClass v = visit(17);
  v.state_after = on_body(17, kEpoch + 30.0, 31, 2460.0);
  EXPECT_TRUE(run([&] { return v.check_rv_ifequal2asteroid(); }).result);
}

TEST_F(VisitChecks, AsteroidWithRefusedElementsIsABodyAtRestAtTheSun) {
  VisitClass v;
  v.body_id = 5001;
  v.state_before.line_index = 30;
  v.state_after.line_index = 31;
  v.state_before.epoch = v.state_after.epoch = kEpoch;
  v.state_before.r[0] = v.state_after.r[0] = 500.0;
  EXPECT_TRUE(run([&] { return v.check_rv_ifequal2asteroid(); }).result);
  v.state_before.v[1] = v.state_after.v[1] = 0.002;
  EXPECT_EQ(run([&] { return v.check_rv_ifequal2asteroid(); }).out,
            visit_line("Error705", 31, kAsteroidVelocity));
}

TEST_F(VisitChecks, EventStopsAtTheFirstFailingCheck) {
  VisitClass v = visit(17);
  v.state_after.v[0] += 0.5;  // the pair disagrees in velocity
  v.state_after.r[0] += 5000.0;
  v.state_before.r[0] += 5000.0;  // both far from the asteroid, never reached
  const auto outcome = run([&] { return v.check_visitevent(); });
  EXPECT_FALSE(outcome.result);
  EXPECT_EQ(outcome.out, visit_line("Error703", 32, kVelocity));
}

}  // namespace
