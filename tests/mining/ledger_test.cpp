// One asteroid's mining pair, with a collector that goes on after a violation: every rule
// decides alone whether the pair delivers (the messages are the end-to-end tables').
#include "mining/ledger.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

TEST(MiningPair, DeliversOnlyWhenEveryRuleHolds) {
  struct Case {
    const char* name;
    double interval, miner, collected, unloaded;  // days, kg, kg, days after the first
    int expected;  // 1: delivered, -1: valid but not unloaded at the Earth after, 0: refused
  };
  const Case cases[] = {
      {"Delivered", 400.0, -40.0, 5.0, 500.0, 1},
      {"UnloadedBeforeTheCollection", 400.0, -40.0, 5.0, 300.0, -1},
      // Less than a year, although the mass is within what that time allows.
      {"ShortInterval", 300.0, -40.0, 5.0, 500.0, 0},
      {"MinerOfThirtyNineKilograms", 400.0, -39.0, 5.0, 500.0, 0},
      {"NothingCollected", 400.0, -40.0, 0.0, 500.0, 0},
      {"MoreThanTenKilogramsAYear", 400.0, -40.0, 11.0, 500.0, 0},
      // A year's ten kilograms and the one-gram tolerance may be collected, not a bit more.
      {"ExactlyTheYearsAllowance", 365.25, -40.0, 10.0 + 0.001, 500.0, 1},
      {"JustAboveTheYearsAllowance", 365.25, -40.0, std::nextafter(10.0 + 0.001, 11.0), 500.0, 0},
  };
  for (const Case& c : cases) {
    DmStructAsteroid record;
    record.num_rendezvous = 2;
    record.epoch1 = 65000.0;
    record.mass_change1 = c.miner;
    record.epoch2 = 65000.0 + c.interval;
    record.mass_change2 = c.collected;
    record.time_of_LRE2 = 65000.0 + c.unloaded;
    kavren::Findings all(false);
    EXPECT_EQ(kavren::check_mining_pair(record, all), c.expected) << c.name;
  }
  // Two rendezvous at one epoch stay in the order met: the refusal names the second.
  DmStructAsteroid same{2, 10, 0.0, 65000.0, -40.0, 20, 0.0, 65000.0, 5.0};
  kavren::Findings first(true);
  EXPECT_TRUE(kavren::check_mining_pair(same, first) == 0 && first.findings()[0].lines[0] == 21);
}

}  // namespace
