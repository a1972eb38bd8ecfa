// The ship-count limit drawn from the average delivered mass, against the logarithmic
// bound it states; the score file's rows against a stream's formatting of them (the
// end-to-end tables compare whole files).
#include "mining/score.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <iomanip>
#include <limits>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "console/checks.h"
#include "support/capture.h"

namespace {

// Runs the ship-count check for `num_ships` ships that delivered `masses`; returns the
// largest count printed in Error301, or -1 when the count is allowed silently.
int refused_maximum(int num_ships, const std::vector<double>& masses) {
  std::vector<StoreDmStruct> store;
  int id = 1;
  for (double m : masses) store.push_back({id++, m});
  double total = -1.0;
  bool passed = false;
  const auto outcome =
      kavren::test::capture([&] { passed = Test_MotherShipNum(num_ships, store, total); });
  if (!outcome.ended) {
    EXPECT_TRUE(passed);
    EXPECT_EQ(outcome.out, "");
    return -1;
  }
  EXPECT_EQ(outcome.status, 3);
  const std::string head = "Error301. Mining Ship Number Error: The number of Mining Ships is " +
                           std::to_string(num_ships) +
                           ", greater than the appropriable maximum number ";
  EXPECT_EQ(outcome.out.compare(0, head.size(), head), 0) << outcome.out;
  return std::stoi(outcome.out.substr(head.size()));
}

// m ships are allowed when m <= 2 e^(0.004 x) for the average x, at most 100: sweep
// averages away from the boundaries and compare verdict and printed maximum.
TEST(ShipCount, LimitAgreesWithAnIndependentLogarithmicBound) {
  for (int ships = 0; ships <= 12; ++ships) {
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
      const std::vector<double> masses =
          ships == 0 ? std::vector<double>{} : std::vector<double>{average * ships};
      EXPECT_EQ(refused_maximum(ships, masses), expected >= ships ? -1 : expected);
    }
  }
}

TEST(ShipCount, CapOfOneHundredAndUnboundedAverages) {
  // ln 50 / 0.004 = 978.0058: the uncapped limit reaches 100 just above it.
  EXPECT_EQ(refused_maximum(100, {978.1 * 100}), -1);
  EXPECT_EQ(refused_maximum(100, {977.9 * 100}), 99);
  EXPECT_EQ(refused_maximum(101, {985.0 * 101}), 100);
  EXPECT_EQ(refused_maximum(101, {1.0e300, 1.0e300}), 100);  // exp overflows to +inf
  EXPECT_EQ(refused_maximum(100, {std::numeric_limits<double>::infinity()}), -1);
  EXPECT_EQ(refused_maximum(100, {std::numeric_limits<double>::quiet_NaN()}), -1);
  EXPECT_EQ(refused_maximum(101, {std::numeric_limits<double>::quiet_NaN()}), 100);
  EXPECT_EQ(refused_maximum(0, {25.0}), -1);
}

// The rows as a stream writes them (setw, setprecision(17)), for masses of every kind:
// ordinary, tiny, huge, subnormal, signed zeros, infinities, NaNs of either sign, and
// random bit patterns.
TEST(ScoreFile, RowsAsAStreamWritesThem) {
  std::vector<StoreDmStruct> store;
  const double inf = std::numeric_limits<double>::infinity();
  const double nan = std::numeric_limits<double>::quiet_NaN();
  for (double m : {49.950000000000045, 0.0, -0.0, 1e-310, 5e-324, 1e300, 123456789012345678.0, 0.1,
                   1e16, 1e17, -2.5, inf, -inf, nan, -nan}) {
    store.push_back({static_cast<int>(store.size()) * 7919 - 3, m});
  }
  std::mt19937_64 random(7);
  for (int k = 0; k < 2000; ++k) {
    const std::uint64_t bits = random();
    double m;
    std::memcpy(&m, &bits, sizeof m);
    store.push_back({static_cast<int>(bits >> 40) - (1 << 23), m});
  }
  std::ostringstream expected;
  expected << store.size() << '\n' << std::setprecision(17);
  for (const StoreDmStruct& mined : store) {
    expected << std::setw(20) << mined.asteroid_id << std::setw(30) << mined.mass << '\n';
  }
  EXPECT_EQ(kavren::score_file_text(store), expected.str());
}

}  // namespace
