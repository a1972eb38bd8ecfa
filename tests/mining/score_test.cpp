// The ship-count limit drawn from the average delivered mass, and the score file.
#include "mining/score.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "mining_test_util.h"
#include "support/e2e.h"

namespace {

using mining_test::Outcome;
using mining_test::run_captured;

std::string error301(int ships, int maximum) {
  return "Error301. Mining Ship Number Error: The number of Mining Ships is " +
         std::to_string(ships) + ", greater than the appropriable maximum number " +
         std::to_string(maximum) + ".\n";
}

struct Count {
  bool passed = false;
  double total = -1.0;
  Outcome outcome;
};

Count count(int num_ships, const std::vector<double>& masses) {
  std::vector<StoreDmStruct> store;
  int id = 1;
  for (double m : masses) store.push_back({id++, m});
  Count result;
  result.outcome = run_captured([&] { result.passed = Test_MotherShipNum(num_ships, store, result.total); });
  return result;
}

void expect_allowed(int num_ships, const std::vector<double>& masses) {
  Count c = count(num_ships, masses);
  EXPECT_TRUE(c.passed) << num_ships;
  EXPECT_FALSE(c.outcome.ended);
  EXPECT_EQ(c.outcome.out, "");
}

void expect_refused(int num_ships, const std::vector<double>& masses, int maximum) {
  Count c = count(num_ships, masses);
  EXPECT_TRUE(c.outcome.ended);
  EXPECT_EQ(c.outcome.status, 3);
  EXPECT_EQ(c.outcome.out, error301(num_ships, maximum));
}

TEST(ShipCount, TotalIsTheSumInListOrderAndWrittenEvenOnFailure) {
  Count c = count(1, {12.5, 19.75, 0.25});
  EXPECT_TRUE(c.passed);
  EXPECT_EQ(c.total, 32.5);
  // Summation order shows in the last bit: (0.1 + 0.2) + 0.3 differs from 0.1 + (0.2 + 0.3).
  c = count(1, {0.1, 0.2, 0.3});
  EXPECT_EQ(c.total, (0.1 + 0.2) + 0.3);
  c = count(1, {});
  EXPECT_EQ(c.total, 0.0);
  c = count(3, {});
  EXPECT_TRUE(c.outcome.ended);
  EXPECT_EQ(c.total, 0.0);
}

TEST(ShipCount, NothingDeliveredAllowsTwoShips) {
  expect_allowed(1, {});
  expect_allowed(2, {});
  expect_refused(3, {}, 2);
}

TEST(ShipCount, LimitIsTruncatedNotRounded) {
  // 2·e^0.6932 = 4.0002..., 2·e^0.6928 = 3.9986...
  expect_allowed(4, {173.3 * 4});
  expect_refused(4, {173.2 * 4}, 3);
  expect_refused(5, {173.3 * 5}, 4);
}

TEST(ShipCount, CapOfOneHundred) {
  // ln 50 / 0.004 = 978.0058: the uncapped limit reaches 100 just above it.
  expect_allowed(100, {978.1 * 100});
  expect_refused(100, {977.9 * 100}, 99);
  // 2·e^(0.004·985) = 102.8 would allow 101 ships; the cap does not.
  expect_refused(101, {985.0 * 101}, 100);
  expect_allowed(100, {985.0 * 100});
  expect_refused(150, {1.0e9}, 100);
  // exp overflows to +inf.
  expect_allowed(1, {1.0e300});
  expect_refused(101, {1.0e300, 1.0e300}, 100);
  // +inf and NaN averages are capped the same way.
  expect_allowed(100, {std::numeric_limits<double>::infinity()});
  expect_allowed(100, {std::numeric_limits<double>::quiet_NaN()});
  expect_refused(101, {std::numeric_limits<double>::quiet_NaN()}, 100);
}

TEST(ShipCount, LimitAgreesWithAnIndependentLogarithmicBound) {
  // m ships are allowed when m <= 2·e^x, i.e. ln(m / 2) <= x; sweep averages away from
  // the boundaries and compare the verdict and the printed maximum.
  for (int ships = 1; ships <= 12; ++ships) {
    for (double average = 0.0; average <= 1200.0; average += 37.5) {
      const double x = 0.004 * average;
      int expected = 0;
      bool near_boundary = false;
      for (int m = 1; m <= 100; ++m) {
        const double margin = x - std::log(m / 2.0);
        if (std::fabs(margin) < 1e-9) near_boundary = true;
        if (margin >= 0.0) expected = m;
      }
      if (near_boundary) continue;
      SCOPED_TRACE(std::to_string(ships) + " ships, average " + std::to_string(average));
      if (expected >= ships) {
        expect_allowed(ships, {average * ships});
      } else {
        expect_refused(ships, {average * ships}, expected);
      }
    }
  }
}

TEST(ShipCount, NoShipsAtAllIsAllowed) {
  expect_allowed(0, {});
  expect_allowed(0, {25.0});
}

// Runs a score-file write inside a fresh directory and restores the working directory.
class ScoreFile : public ::testing::Test {
 protected:
  void SetUp() override {
    char buffer[4096];
    ASSERT_NE(getcwd(buffer, sizeof buffer), nullptr);
    saved_ = buffer;
    ASSERT_EQ(chdir(dir_.path().c_str()), 0);
  }
  void TearDown() override { ASSERT_EQ(chdir(saved_.c_str()), 0); }

  std::string write(const std::vector<StoreDmStruct>& store) {
    bool passed = false;
    Outcome outcome = run_captured([&] { passed = Output_Solution(store); });
    EXPECT_TRUE(passed);
    EXPECT_FALSE(outcome.ended);
    EXPECT_EQ(outcome.out, "");
    return dir_.read("ScoreData.txt").value_or("<missing>");
  }

  static std::string row(const std::string& id, const std::string& mass) {
    return std::string(20 - id.size(), ' ') + id + std::string(30 - mass.size(), ' ') + mass + "\n";
  }

  kavren::test::TempDir dir_;
  std::string saved_;
};

TEST_F(ScoreFile, TwoMinedAsteroids) {
  EXPECT_EQ(write({{5, 12.5}, {1234, 19.75}}),
            "2\n" + std::string(19, ' ') + "5" + std::string(26, ' ') + "12.5\n" +
                std::string(16, ' ') + "1234" + std::string(25, ' ') + "19.75\n");
}

TEST_F(ScoreFile, EmptyListIsASingleZero) { EXPECT_EQ(write({}), "0\n"); }

TEST_F(ScoreFile, MassesInSeventeenSignificantDigits) {
  EXPECT_EQ(write({{1, 0.1},
                   {2, 1.0e-5},
                   {3, 20.0},
                   {4, 0.0001},
                   {5, 1.0e17},
                   {6, 12345678901234568.0},
                   {7, 20.0 + 0.001},
                   {60000, 1.0 / 3.0}}),
            "8\n" + row("1", "0.10000000000000001") + row("2", "1.0000000000000001e-05") +
                row("3", "20") + row("4", "0.0001") + row("5", "1e+17") +
                row("6", "12345678901234568") + row("7", "20.001000000000001") +
                row("60000", "0.33333333333333331"));
}

TEST_F(ScoreFile, EveryMassReadsBackToTheSameDouble) {
  std::vector<StoreDmStruct> store;
  double mass = 0.001;
  for (int id = 1; id <= 50; ++id) {
    store.push_back({id, mass});
    mass = mass * 1.37 + 1.0 / id;
  }
  const std::string text = write(store);
  std::size_t at = text.find('\n') + 1;
  for (const StoreDmStruct& mined : store) {
    const std::string line = text.substr(at, 51);
    ASSERT_EQ(line.size(), 51u);
    EXPECT_EQ(line[50], '\n');
    EXPECT_EQ(std::stoi(line.substr(0, 20)), mined.asteroid_id);
    EXPECT_EQ(std::strtod(line.substr(20, 30).c_str(), nullptr), mined.mass);
    at += 51;
  }
  EXPECT_EQ(at, text.size());
}

TEST_F(ScoreFile, ReplacesAnEarlierFile) {
  dir_.write("ScoreData.txt", std::string(500, 'x') + "\n");
  EXPECT_EQ(write({{9, 1.5}}), "1\n" + row("9", "1.5"));
}

TEST_F(ScoreFile, UnopenableFileEndsTheRunWithStatusZero) {
  ASSERT_EQ(mkdir("ScoreData.txt", 0700), 0);  // a directory cannot be opened for writing
  bool passed = false;
  Outcome outcome = run_captured([&] { passed = Output_Solution({{1, 2.0}}); });
  EXPECT_TRUE(outcome.ended);
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.out, "ErrorA00. File Open Error: Cannot find this file 'ScoreData.txt'.\n");
  ASSERT_EQ(rmdir("ScoreData.txt"), 0);
}

}  // namespace
