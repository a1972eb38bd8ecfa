#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "events_test_util.h"

namespace {

using events_test::on_body;
using events_test::run;

const std::string kError801Tail =
    ": The mass of resources unloaded on the Earth should be equal to the total mass of "
    "resources carried by the ship.\n";

std::string error801(int line) {
  return "Error801. Mining Data Error on the line" + std::to_string(line) + kError801Tail;
}
std::string error807(int ship) {
  return "Error807. Mining Data Error: The number of miners used by a single Mining Ship "
         "exceeds the allowable range. Ship ID:" +
         std::to_string(ship) + ".\n";
}
std::string error901(int ship) {
  return "Error901. Mass Error: The final mass of the Minging ship is unreasonable. Ship ID:" +
         std::to_string(ship) + ".\n";
}

DmStructShip entry(int line_index, double mass_change, double epoch) {
  DmStructShip e;
  e.line_index = line_index;
  e.mass_change = mass_change;
  e.epoch = epoch;
  return e;
}

VisitClass visit_with_change(double mass_change) {
  VisitClass v;
  v.mass_change = mass_change;
  return v;
}

class ShipChecks : public ::testing::Test {
 protected:
  // Ship 3: launched at the Earth on lines 1-2, a miner left on asteroid 17 (lines 5-6),
  // a Mars flyby (lines 9-10), 120 kg collected on asteroid 17 a year and a half after
  // the deployment (lines 13-14), then those 120 kg dropped at an Earth flyby (17-18).
  static ShipClass mining_ship() {
    ShipClass ship;
    ship.ship_id = 3;
    ship.launch.body_id = 0;
    ship.launch.state_before = on_body(0, 64500.0, 0, 2500.0);
    ship.launch.state_after = on_body(0, 64500.0, 1, 2500.0);
    ship.launch.state_after.v[0] += 2.0;

    VisitClass deploy;
    deploy.body_id = 17;
    deploy.state_before = on_body(17, 64900.0, 4, 2300.0);
    deploy.state_after = on_body(17, 64900.0, 5, 2260.0);
    deploy.mass_change = -40.0;

    FlybyClass mars;
    mars.body_id = -4;
    mars.state_before = on_body(-4, 65200.0, 8, 2100.0);
    mars.state_after = on_body(-4, 65200.0, 9, 2100.0);
    mars.state_before.v[0] += 4.0;
    mars.state_after.v[0] += 4.0 * std::cos(0.5);  // a turn of 0.5 rad, inside the
    mars.state_after.v[1] += 4.0 * std::sin(0.5);  // 0.87 rad Mars allows at 4 km/s
    mars.vinf_magnitude = -1.0;

    VisitClass collect;
    collect.body_id = 17;
    collect.state_before = on_body(17, 65500.0, 12, 1900.0);
    collect.state_after = on_body(17, 65500.0, 13, 2020.0);
    collect.mass_change = 120.0;

    FlybyClass earth;
    earth.body_id = -3;
    earth.state_before = on_body(-3, 66000.0, 16, 1800.0);
    earth.state_after = on_body(-3, 66000.0, 17, 1680.0);
    earth.state_before.v[2] += 3.0;
    earth.state_after.v[2] += 3.0;
    earth.mass_change = -120.0;

    ship.visits = {deploy, collect};
    ship.flybys = {mars, earth};
    ship.dm_groups = {{entry(13, 120.0, 65500.0), entry(17, -120.0, 66000.0)}};
    ship.set_final_mass(600.0);
    return ship;
  }
  events_test::Catalogue catalogue_;
};

TEST_F(ShipChecks, ValidShipPassesAndFillsItsDerivedFields) {
  ShipClass ship = mining_ship();
  const auto outcome = run([&] { return ship.check_all(); });
  EXPECT_TRUE(outcome.result);
  EXPECT_EQ(outcome.out, "");
  EXPECT_FALSE(outcome.ended);
  EXPECT_EQ(ship.get_mass_of_resources(), 120.0);
  EXPECT_EQ(ship.get_time_of_LRE(), 66000.0);
  EXPECT_EQ(ship.get_num_miners(), 1.0);
  EXPECT_EQ(ship.mass_collected, 120.0);
  EXPECT_NEAR(ship.flybys[0].vinf_magnitude, 4.0, 1e-12);
  EXPECT_NEAR(ship.flybys[1].vinf_magnitude, 3.0, 1e-12);
}

TEST_F(ShipChecks, ShipWithoutMiningKeepsItsDefaults) {
  ShipClass ship = mining_ship();
  ship.visits.clear();
  ship.flybys.clear();
  ship.dm_groups.clear();
  ship.set_final_mass(500.0);
  const auto outcome = run([&] { return ship.check_all(); });
  EXPECT_TRUE(outcome.result);
  EXPECT_EQ(outcome.out, "");
  EXPECT_EQ(ship.get_mass_of_resources(), 0.0);
  EXPECT_EQ(ship.get_time_of_LRE(), 64328.0);
  EXPECT_EQ(ship.get_num_miners(), 0.0);
}

TEST_F(ShipChecks, SequenceStopsAtTheFirstFailure) {
  {
    // A launch failure: nothing after it runs, no field is written.
    ShipClass ship = mining_ship();
    ship.launch.state_before.mass = 3500.0;
    ship.launch.state_after.mass = 3500.0;
    ship.visits[0].state_after.r[0] += 5000.0;
    const auto outcome = run([&] { return ship.check_all(); });
    EXPECT_FALSE(outcome.result);
    EXPECT_FALSE(outcome.ended);  // a failed rule returns, the run is not ended here
    EXPECT_EQ(outcome.out,
              "Error504. Data Error of the event of launch on the line1: Initial mass of Mining "
              "Ship is greater than the limit value.\n");
    EXPECT_EQ(ship.get_time_of_LRE(), 64328.0);
  }
  {
    // A failing Mars pass stops before the Earth pass and every rendezvous.
    ShipClass ship = mining_ship();
    ship.flybys[0].state_after.v[1] += 0.01;
    ship.flybys[1].state_after.r[0] += 5000.0;
    ship.visits[0].state_after.r[0] += 5000.0;
    const auto outcome = run([&] { return ship.check_all(); });
    EXPECT_FALSE(outcome.result);
    EXPECT_FALSE(outcome.ended);  // a failed rule returns, the run is not ended here
    EXPECT_EQ(outcome.out,
              "Error607. Data Error of the event of flyby on the line9: The magnitudes of the "
              "hyperbolic excess velocity before and after the flyby are different.\n");
  }
  {
    // All three checks of one flyby run before the next flyby.
    ShipClass ship = mining_ship();
    ship.flybys[0].state_after.v[1] += 0.01;  // check_flyby of the first pass
    ship.flybys[1].state_after.epoch += 1.0;  // check_2lines_trm of the second
    const auto outcome = run([&] { return ship.check_all(); });
    EXPECT_FALSE(outcome.result);
    EXPECT_FALSE(outcome.ended);  // a failed rule returns, the run is not ended here
    EXPECT_EQ(outcome.out,
              "Error607. Data Error of the event of flyby on the line9: The magnitudes of the "
              "hyperbolic excess velocity before and after the flyby are different.\n");
  }
  {
    // Both checks of one rendezvous run before the next one.
    ShipClass ship = mining_ship();
    ship.visits[0].state_before.v[0] += 0.0015;  // asteroid check of the first
    ship.visits[0].state_after.v[0] += 0.0015;
    ship.visits[1].state_after.r[0] += 1500.0;  // pair check of the second
    const auto outcome = run([&] { return ship.check_all(); });
    EXPECT_FALSE(outcome.result);
    EXPECT_FALSE(outcome.ended);  // a failed rule returns, the run is not ended here
    EXPECT_EQ(outcome.out,
              "Error705. Data Error of the event of rendezvous on the line5: The velocity error "
              "with the asteroid exceeds the allowable range.\n");
  }
  {
    // A broken balance stops before the last-drop epoch is taken.
    ShipClass ship = mining_ship();
    ship.dm_groups[0][1].mass_change = -119.0;
    for (int k = 0; k < 25; ++k) ship.visits.push_back(ship.visits[0]);  // 807 never reached
    const auto outcome = run([&] { return ship.check_all(); });
    EXPECT_FALSE(outcome.result);
    EXPECT_FALSE(outcome.ended);  // a failed rule returns, the run is not ended here
    EXPECT_EQ(outcome.out, error801(18));
    EXPECT_EQ(ship.get_time_of_LRE(), 64328.0);
  }
}

TEST_F(ShipChecks, TwentyMinersPassTwentyOneFail) {
  ShipClass ship = mining_ship();
  for (int k = 0; k < 19; ++k) ship.visits.push_back(ship.visits[0]);
  auto outcome = run([&] { return ship.check_all(); });
  EXPECT_TRUE(outcome.result);
  EXPECT_EQ(ship.get_num_miners(), 20.0);

  ship.visits.push_back(ship.visits[0]);
  ship.set_final_mass(1.0e6);  // the final mass would pass
  outcome = run([&] { return ship.check_all(); });
  EXPECT_FALSE(outcome.result);
  EXPECT_EQ(outcome.out, error807(3));
  EXPECT_EQ(ship.get_num_miners(), 21.0);
  EXPECT_EQ(ship.get_time_of_LRE(), 66000.0);  // written before the count failed
}

TEST(ShipLedger, BalanceToleranceIsInclusive) {
  ShipClass ship;
  ship.dm_groups = {{entry(4, 0.002, 65000.0), entry(8, -0.001, 65100.0)}};  // off by 0.001
  EXPECT_TRUE(run([&] { return ship.check_dm(); }).result);
  EXPECT_EQ(ship.get_mass_of_resources(), 0.001);

  ship.dm_groups = {{entry(4, 100.0011, 65000.0), entry(8, -100.0, 65100.0)}};
  const auto outcome = run([&] { return ship.check_dm(); });
  EXPECT_FALSE(outcome.result);
  EXPECT_EQ(outcome.out, error801(9));
}

TEST(ShipLedger, BalanceIsCumulativeOverGroups) {
  ShipClass ship;
  ship.dm_groups = {
      {entry(4, 100.0008, 65000.0), entry(8, -100.0, 65100.0)},
      {entry(12, 50.0, 65500.0), entry(14, 20.0, 65600.0), entry(18, -70.0008, 65700.0)}};
  auto outcome = run([&] { return ship.check_dm(); });
  EXPECT_TRUE(outcome.result);
  EXPECT_EQ(outcome.out, "");
  EXPECT_DOUBLE_EQ(ship.get_mass_of_resources(), 170.0008);

  ship.dm_groups = {{entry(4, 100.0006, 65000.0), entry(8, -100.0, 65100.0)},
                    {entry(12, 50.0006, 65500.0), entry(18, -50.0, 65700.0)},
                    {entry(22, 10.0, 65800.0), entry(24, -10.0012, 65900.0)}};
  ship.set_mass_of_resources(-1.0);
  outcome = run([&] { return ship.check_dm(); });
  EXPECT_FALSE(outcome.result);
  EXPECT_EQ(outcome.out, error801(19));
  EXPECT_EQ(ship.get_mass_of_resources(), -1.0);  // untouched on failure
}

TEST(ShipLedger, LastDropEpochComesFromTheLastGroup) {
  ShipClass ship;
  ship.calculate_time_of_LRE();
  EXPECT_EQ(ship.get_time_of_LRE(), 64328.0);

  ship.dm_groups = {{entry(4, 10.0, 65000.0), entry(8, -10.0, 65100.0)},
                    {entry(12, 5.0, 66000.0), entry(18, -5.0, 66200.0)}};
  ship.calculate_time_of_LRE();
  EXPECT_EQ(ship.get_time_of_LRE(), 66200.0);
}

TEST(ShipLedger, EmptyGroupsHoldNoDrop) {
  ShipClass ship;
  ship.dm_groups = {{entry(4, 10.0, 65000.0), entry(8, -10.0, 65100.0)}, {}};
  const auto outcome = run([&] { return ship.check_dm(); });
  EXPECT_TRUE(outcome.result);
  EXPECT_EQ(ship.get_mass_of_resources(), 10.0);
  ship.calculate_time_of_LRE();
  EXPECT_EQ(ship.get_time_of_LRE(), 65100.0);

  ShipClass only_empty;
  only_empty.dm_groups = {{}};
  EXPECT_TRUE(run([&] { return only_empty.check_dm(); }).result);
  only_empty.calculate_time_of_LRE();
  EXPECT_EQ(only_empty.get_time_of_LRE(), 64328.0);
}

TEST(ShipLedger, MinersAreTheRendezvousThatLoseMass) {
  ShipClass ship;
  ship.ship_id = 12;
  ship.num_miners = 99;
  ship.mass_collected = 99.0;
  ship.visits = {visit_with_change(-40.0), visit_with_change(0.0),     visit_with_change(-0.0),
                 visit_with_change(75.5),  visit_with_change(-1e-300), visit_with_change(24.5)};
  const auto outcome = run([&] { return ship.calculate_check_num_miners(); });
  EXPECT_TRUE(outcome.result);
  EXPECT_EQ(ship.get_num_miners(), 2.0);  // zero changes are collections, not miners
  EXPECT_EQ(ship.mass_collected, 100.0);

  ship.visits.assign(21, visit_with_change(-40.0));
  const auto failed = run([&] { return ship.calculate_check_num_miners(); });
  EXPECT_FALSE(failed.result);
  EXPECT_EQ(failed.out, error807(12));
}

TEST(ShipLedger, FinalMassLessResourcesOnBoard) {
  struct Case {
    double final_mass, collected, delivered;
    bool passes;
  };
  const Case cases[] = {
      {500.0, 0.0, 0.0, true},
      {499.999, 0.0, 0.0, false},
      {620.0, 150.0, 30.0, true},
      {700.0, 300.0, 50.0, false},  // 450 kg without the resources still carried
      {std::numeric_limits<double>::quiet_NaN(), 0.0, 0.0, true},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.final_mass);
    ShipClass ship;
    ship.ship_id = 4;
    ship.set_final_mass(c.final_mass);
    ship.mass_collected = c.collected;
    ship.set_mass_of_resources(c.delivered);
    const auto outcome = run([&] { return ship.check_final_mass(); });
    EXPECT_EQ(outcome.result, c.passes);
    EXPECT_EQ(outcome.out, c.passes ? "" : error901(4));
  }
}

TEST_F(ShipChecks, FinalMassIsTheLastWord) {
  ShipClass ship = mining_ship();
  ship.set_final_mass(499.0);
  const auto outcome = run([&] { return ship.check_all(); });
  EXPECT_FALSE(outcome.result);
  EXPECT_EQ(outcome.out, error901(3));
  EXPECT_EQ(ship.get_num_miners(), 1.0);
}

}  // namespace
