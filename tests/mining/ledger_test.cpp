// The asteroid ledger: deploy-then-collect pairs across ships, the one-year rule, the
// miner and resource masses, delivery before the last Earth drop, third visits and the
// closing scan of asteroids met once.
#include "mining/ledger.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "mining_test_util.h"

namespace {

using mining_test::Outcome;
using mining_test::run_captured;
using mining_test::ship;
using mining_test::visit;

std::string error802(const std::string& line) {
  return "Error802. Mining Data Error on the line" + line +
         ": The time interval between two rendezvous should not be shorter than one year.\n";
}
std::string error803(const std::string& line) {
  return "Error803. Mining Data Error on the line" + line +
         ": The mass change of the Mining Ship does not match the mass of the miner on the "
         "first rendezvous to the asteroid (exceeding the allowable error).\n";
}
std::string error804(const std::string& line) {
  return "Error804. Mining Data Error on the line " + line +
         ": The mass of resources obtained on the asteroid is unreasonable.\n";
}
std::string error805(const std::string& line) {
  return "Error805. Mining Data Error on the line" + line +
         ": The asteroid is rendezvous more than twice.\n";
}

struct Ledger {
  std::vector<DmStructAsteroid> table = std::vector<DmStructAsteroid>(60000);
  std::vector<StoreDmStruct> store;
  bool passed = false;
  Outcome outcome;
};

Ledger run_ledger(std::vector<ShipClass> ships, int num_ships = -1) {
  Ledger ledger;
  if (num_ships < 0) num_ships = static_cast<int>(ships.size());
  ledger.outcome = run_captured(
      [&] { ledger.passed = CheckVisitDm(ships, num_ships, ledger.table, ledger.store); });
  EXPECT_FALSE(ledger.outcome.ended);  // ledger failures return, they never end the run
  return ledger;
}

constexpr double kDeploy = 65000.0;
constexpr double kLate = 70000.0;  // a last Earth drop after every collection below

// One deploying ship and one collecting ship, `days` apart on asteroid 7.
Ledger pair_run(double days, double deploy_mass, double collected, double collector_LRE = kLate) {
  return run_ledger({ship(1, kLate, {visit(7, 10, kDeploy, deploy_mass)}),
                     ship(2, collector_LRE, {visit(7, 20, kDeploy + days, collected)})});
}

TEST(Ledger, NoRendezvousLeavesTheStoreEmpty) {
  Ledger ledger = run_ledger({ship(1, kLate, {}), ship(2, 64328.0, {})});
  EXPECT_TRUE(ledger.passed);
  EXPECT_EQ(ledger.outcome.out, "");
  EXPECT_TRUE(ledger.store.empty());
  std::vector<ShipClass> empty;
  ledger = run_ledger(empty, 0);
  EXPECT_TRUE(ledger.passed);
  EXPECT_TRUE(ledger.store.empty());
}

TEST(Ledger, ValidPairAcrossShipsIsStoredWithTheCollectedMass) {
  Ledger ledger = pair_run(400.0, -40.0, 10.5);
  EXPECT_TRUE(ledger.passed);
  EXPECT_EQ(ledger.outcome.out, "");
  ASSERT_EQ(ledger.store.size(), 1u);
  EXPECT_EQ(ledger.store[0].asteroid_id, 7);
  EXPECT_EQ(ledger.store[0].mass, 10.5);
  const DmStructAsteroid& record = ledger.table[6];
  EXPECT_EQ(record.num_rendezvous, 2);
  EXPECT_EQ(record.line1, 10);
  EXPECT_EQ(record.line2, 20);
  EXPECT_EQ(record.epoch1, kDeploy);
  EXPECT_EQ(record.epoch2, kDeploy + 400.0);
  EXPECT_EQ(record.mass_change1, -40.0);
  EXPECT_EQ(record.time_of_LRE2, kLate);
  // Neighbouring records untouched.
  EXPECT_EQ(ledger.table[5].num_rendezvous, 0);
  EXPECT_EQ(ledger.table[7].num_rendezvous, 0);
}

TEST(Ledger, StoreFollowsTheOrderInWhichPairsComplete) {
  Ledger ledger = run_ledger(
      {ship(1, kLate, {visit(300, 4, kDeploy, -40.0), visit(60000, 6, kDeploy + 1.0, -40.0)}),
       ship(2, kLate, {visit(60000, 12, kDeploy + 500.0, 3.0), visit(1, 14, kDeploy + 501.0, -40.0),
                       visit(300, 16, kDeploy + 600.0, 4.0)})});
  EXPECT_TRUE(ledger.passed);
  EXPECT_EQ(ledger.outcome.out, "");
  ASSERT_EQ(ledger.store.size(), 2u);
  EXPECT_EQ(ledger.store[0].asteroid_id, 60000);
  EXPECT_EQ(ledger.store[0].mass, 3.0);
  EXPECT_EQ(ledger.store[1].asteroid_id, 300);
  EXPECT_EQ(ledger.store[1].mass, 4.0);
}

TEST(Ledger, OneYearRuleAtItsBoundary) {
  Ledger ledger = pair_run(365.25, -40.0, 5.0);
  EXPECT_TRUE(ledger.passed);
  EXPECT_EQ(ledger.store.size(), 1u);

  ledger = pair_run(365.2499, -40.0, 5.0);
  EXPECT_FALSE(ledger.passed);
  EXPECT_EQ(ledger.outcome.out, error802("21"));
  EXPECT_TRUE(ledger.store.empty());

  ledger = pair_run(0.0, -40.0, 5.0);  // equal epochs
  EXPECT_FALSE(ledger.passed);
  EXPECT_EQ(ledger.outcome.out, error802("21"));

  // The threshold itself passes; the next smaller interval fails.
  DmStructAsteroid record;
  record.num_rendezvous = 2;
  record.line1 = 3;
  record.line2 = 8;
  record.mass_change1 = -40.0;
  record.mass_change2 = 5.0;
  record.epoch2 = 365.24999999;
  record.time_of_LRE2 = 1000.0;
  DmStructAsteroid at = record;
  int verdict = 9;
  Outcome outcome = run_captured([&] { verdict = check_DmStructAsteroid(at); });
  EXPECT_EQ(verdict, 1);
  EXPECT_EQ(outcome.out, "");
  DmStructAsteroid below = record;
  below.epoch2 = std::nextafter(365.24999999, 0.0);
  outcome = run_captured([&] { verdict = check_DmStructAsteroid(below); });
  EXPECT_EQ(verdict, 0);
  EXPECT_EQ(outcome.out, error802("9"));
}

TEST(Ledger, ReverseOrderIsReorderedBeforeChecking) {
  // The collection (line 6) is met first, in ship 1; the deployment (line 31) later.
  auto reversed = [](double days, double deploy_mass, double collected) {
    return run_ledger({ship(1, kLate, {visit(42, 5, kDeploy + days, collected)}),
                       ship(2, 64328.0, {visit(42, 30, kDeploy, deploy_mass)})});
  };
  Ledger ledger = reversed(500.0, -40.0, 8.0);
  EXPECT_TRUE(ledger.passed);
  ASSERT_EQ(ledger.store.size(), 1u);
  EXPECT_EQ(ledger.store[0].asteroid_id, 42);
  EXPECT_EQ(ledger.store[0].mass, 8.0);  // read after the exchange
  EXPECT_EQ(ledger.table[41].line1, 30);
  EXPECT_EQ(ledger.table[41].line2, 5);
  EXPECT_EQ(ledger.table[41].time_of_LRE2, kLate);  // the collecting ship's drop

  EXPECT_EQ(reversed(500.0, -39.998, 8.0).outcome.out, error803("31"));
  EXPECT_EQ(reversed(100.0, -40.0, 8.0).outcome.out, error802("6"));
  EXPECT_EQ(reversed(500.0, -40.0, 30.0).outcome.out, error804("6"));
}

TEST(Ledger, MinerMassTolerance) {
  Ledger ledger = pair_run(400.0, -39.9991, 5.0);
  EXPECT_TRUE(ledger.passed);
  EXPECT_EQ(ledger.outcome.out, "");
  ledger = pair_run(400.0, -40.0009, 5.0);
  EXPECT_TRUE(ledger.passed);

  ledger = pair_run(400.0, -39.998, 5.0);
  EXPECT_FALSE(ledger.passed);
  EXPECT_EQ(ledger.outcome.out, error803("11"));
  ledger = pair_run(400.0, -40.002, 5.0);
  EXPECT_EQ(ledger.outcome.out, error803("11"));
  // A deployment that gains mass is no deployment.
  ledger = pair_run(400.0, 40.0, 5.0);
  EXPECT_EQ(ledger.outcome.out, error803("11"));
}

TEST(Ledger, CollectedMassLimit) {
  // 730.5 days: two years of 10 kg, plus the allowance.
  Ledger ledger = pair_run(730.5, -40.0, 20.001);
  EXPECT_TRUE(ledger.passed);
  EXPECT_EQ(ledger.outcome.out, "");

  ledger = pair_run(730.5, -40.0, 20.0011);
  EXPECT_FALSE(ledger.passed);
  EXPECT_EQ(ledger.outcome.out, error804("21"));
  EXPECT_TRUE(ledger.store.empty());

  EXPECT_EQ(pair_run(730.5, -40.0, 0.0).outcome.out, error804("21"));
  EXPECT_EQ(pair_run(730.5, -40.0, -1.0).outcome.out, error804("21"));
  EXPECT_EQ(pair_run(730.5, -40.0, -40.0).outcome.out, error804("21"));
  // The smallest positive collection passes.
  EXPECT_TRUE(pair_run(730.5, -40.0, std::numeric_limits<double>::denorm_min()).passed);
}

TEST(Ledger, RuleOrderWithinAPair) {
  // Short interval, wrong miner and excessive mass at once: the interval is reported.
  EXPECT_EQ(pair_run(10.0, 0.0, 99.0).outcome.out, error802("21"));
  // Wrong miner and excessive mass: the miner is reported.
  EXPECT_EQ(pair_run(400.0, 0.0, 99.0).outcome.out, error803("11"));
}

TEST(Ledger, CollectionCountsOnlyBeforeTheCollectorsLastDrop) {
  const double collect = kDeploy + 400.0;
  Ledger ledger = pair_run(400.0, -40.0, 6.0, collect);  // drop on the same day
  EXPECT_TRUE(ledger.passed);
  EXPECT_EQ(ledger.store.size(), 1u);

  ledger = pair_run(400.0, -40.0, 6.0, collect - 1.0);  // last drop a day before
  EXPECT_TRUE(ledger.passed);
  EXPECT_EQ(ledger.outcome.out, "");
  EXPECT_TRUE(ledger.store.empty());
  EXPECT_EQ(ledger.table[6].num_rendezvous, 2);

  ledger = pair_run(400.0, -40.0, 6.0, 64328.0);  // never unloads
  EXPECT_TRUE(ledger.passed);
  EXPECT_TRUE(ledger.store.empty());

  // The deploying ship's drop is irrelevant: only the collector's counts.
  ledger = run_ledger({ship(1, 64328.0, {visit(7, 10, kDeploy, -40.0)}),
                       ship(2, kLate, {visit(7, 20, kDeploy + 400.0, 6.0)})});
  EXPECT_EQ(ledger.store.size(), 1u);
}

TEST(Ledger, ThirdRendezvousFails) {
  Ledger ledger =
      run_ledger({ship(1, kLate, {visit(9, 2, kDeploy, -40.0), visit(9, 8, kDeploy + 400.0, 5.0)}),
                  ship(2, kLate, {visit(9, 40, kDeploy + 800.0, -40.0)})});
  EXPECT_FALSE(ledger.passed);
  EXPECT_EQ(ledger.outcome.out, error805("41"));
  // What was recorded before the failure stays.
  ASSERT_EQ(ledger.store.size(), 1u);
  EXPECT_EQ(ledger.store[0].asteroid_id, 9);
  EXPECT_EQ(ledger.table[8].num_rendezvous, 2);
}

TEST(Ledger, FailureStopsBeforeLaterShips) {
  // Ship 2's pair fails; ship 3's single bad visit is never booked.
  Ledger ledger = run_ledger({ship(1, kLate, {visit(9, 2, kDeploy, -40.0)}),
                              ship(2, kLate, {visit(9, 8, kDeploy + 3.0, 5.0)}),
                              ship(3, kLate, {visit(11, 15, kDeploy, 2.0)})});
  EXPECT_FALSE(ledger.passed);
  EXPECT_EQ(ledger.outcome.out, error802("9"));
  EXPECT_EQ(ledger.table[10].num_rendezvous, 0);
}

TEST(Ledger, SingleVisitMustLeaveAMiner) {
  Ledger ledger = run_ledger({ship(1, kLate, {visit(5, 56, kDeploy, -40.0)})});
  EXPECT_TRUE(ledger.passed);
  EXPECT_EQ(ledger.outcome.out, "");
  EXPECT_TRUE(ledger.store.empty());

  ledger = run_ledger({ship(1, kLate, {visit(5, 56, kDeploy, -39.998)})});
  EXPECT_FALSE(ledger.passed);
  EXPECT_EQ(ledger.outcome.out, error803("57"));

  // An unchanged mass fails too; the scan reports the lowest asteroid ID, not the first met.
  ledger = run_ledger({ship(1, kLate, {visit(50000, 3, kDeploy, 0.0), visit(12, 5, kDeploy, 0.0)})});
  EXPECT_EQ(ledger.outcome.out, error803("6"));

  // The scan prints the line number as a floating-point value.
  ledger = run_ledger({ship(1, kLate, {visit(5, 1234566, kDeploy, 2.0)})});
  EXPECT_EQ(ledger.outcome.out, error803("1.23457e+06"));
  ledger = run_ledger({ship(1, kLate, {visit(5, 999999, kDeploy, 2.0)})});
  EXPECT_EQ(ledger.outcome.out, error803("1e+06"));
  // The pair check prints the same line as an integer.
  ledger = run_ledger({ship(1, kLate, {visit(5, 1234566, kDeploy, 2.0)}),
                       ship(2, kLate, {visit(5, 1234600, kDeploy + 400.0, 2.0)})});
  EXPECT_EQ(ledger.outcome.out, error803("1234567"));
}

TEST(Ledger, SingleVisitScanRunsAfterAllPairs) {
  // A valid pair is stored before the scan finds the bad single visit.
  Ledger ledger = run_ledger({ship(1, kLate, {visit(2, 3, kDeploy, 1.0), visit(8, 5, kDeploy, -40.0)}),
                              ship(2, kLate, {visit(8, 9, kDeploy + 400.0, 5.0)})});
  EXPECT_FALSE(ledger.passed);
  EXPECT_EQ(ledger.outcome.out, error803("4"));
  EXPECT_EQ(ledger.store.size(), 1u);
}

TEST(Ledger, OnlyTheCountedShipsAreBooked) {
  std::vector<ShipClass> ships = {ship(1, kLate, {visit(7, 10, kDeploy, -40.0)}),
                                  ship(2, kLate, {visit(7, 20, kDeploy + 400.0, 5.0)})};
  Ledger ledger = run_ledger(ships, 1);
  EXPECT_TRUE(ledger.passed);
  EXPECT_TRUE(ledger.store.empty());
  EXPECT_EQ(ledger.table[6].num_rendezvous, 1);
  // A count beyond the ships held books every ship and stops there.
  ledger = run_ledger(ships, 5);
  EXPECT_TRUE(ledger.passed);
  EXPECT_EQ(ledger.store.size(), 1u);
}

TEST(Ledger, IdentifiersOutsideTheCatalogueAreNotBooked) {
  Ledger ledger = run_ledger({ship(1, kLate,
                                   {visit(0, 3, kDeploy, 5.0), visit(-7, 5, kDeploy, 5.0),
                                    visit(60001, 7, kDeploy, 5.0),
                                    visit(std::numeric_limits<int>::max(), 9, kDeploy, 5.0),
                                    visit(std::numeric_limits<int>::min(), 11, kDeploy, 5.0)})});
  EXPECT_TRUE(ledger.passed);
  EXPECT_EQ(ledger.outcome.out, "");
  EXPECT_TRUE(ledger.store.empty());
  for (const DmStructAsteroid& record : ledger.table) ASSERT_EQ(record.num_rendezvous, 0);
}

TEST(Ledger, NotANumberPassesEveryLimit) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  // A NaN collection epoch passes the interval test but is never before the last drop.
  Ledger ledger = run_ledger({ship(1, kLate, {visit(7, 10, kDeploy, -40.0)}),
                              ship(2, kLate, {visit(7, 20, nan, 5.0)})});
  EXPECT_TRUE(ledger.passed);
  EXPECT_EQ(ledger.outcome.out, "");
  EXPECT_TRUE(ledger.store.empty());
  // A NaN deployment epoch and a NaN collected mass pass, and the collection counts.
  ledger = run_ledger({ship(1, kLate, {visit(7, 10, nan, -40.0)}),
                       ship(2, kLate, {visit(7, 20, kDeploy, nan)})});
  EXPECT_TRUE(ledger.passed);
  EXPECT_EQ(ledger.outcome.out, "");
  ASSERT_EQ(ledger.store.size(), 1u);
  EXPECT_TRUE(std::isnan(ledger.store[0].mass));
  // A NaN miner mass on a single visit passes the closing scan.
  ledger = run_ledger({ship(1, kLate, {visit(7, 10, kDeploy, nan)})});
  EXPECT_TRUE(ledger.passed);
}

TEST(Ledger, ExtremeLineIndicesPrintWithoutOverflow) {
  const int top = std::numeric_limits<int>::max();
  Ledger ledger = run_ledger({ship(1, kLate, {visit(3, 1, kDeploy, -40.0)}),
                              ship(2, kLate, {visit(3, top, kDeploy + 1.0, 5.0)})});
  EXPECT_EQ(ledger.outcome.out, error802("2147483648"));
}

}  // namespace
