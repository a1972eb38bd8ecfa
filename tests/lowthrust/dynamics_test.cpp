// Equations of motion: thrust interpolation, the thrust cap, the 0.3 AU guard, and the
// bit-for-bit agreement of the in-place table lookup with a plain rebuild-and-scan form.
#include "astro/constants.h"
#include "lowthrust/dynamics.h"
#include "lowthrust/rkf78_loop.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "support/capture.h"
#include "lowthrust/rkf78.h"

namespace {

using kavren::test::capture;

// --- Plain form: arrays rebuilt at every call, the table scanned from its start. ---------

double plain_lagrange(const double* x, const double* y, int n, double t) {
  if (n < 1) return y[0];
  if (n == 1) return ((t - x[1]) * y[0] - (t - x[0]) * y[1]) / (x[0] - x[1]);
  double sum = 0.0;
  for (int j = 0; j <= n; ++j) {
    double prod = 1.0;
    for (int k = 0; k <= n; ++k) {
      if (k != j) prod *= (t - x[k]) / (x[j] - x[k]);
    }
    sum += y[j] * prod;
  }
  return sum;
}

double plain_piecewise(const std::vector<double>& x, const std::vector<double>& y, int p,
                       double t) {
  const int n = static_cast<int>(x.size());
  if (n <= p + 1) return plain_lagrange(x.data(), y.data(), n - 1, t);
  int i = 0;
  bool found = false;
  for (; i < n - 1; ++i) {
    if ((x[i] - t) * (x[i + 1] - t) <= 0) {
      found = true;
      break;
    }
  }
  int s = found ? i - p / 2 : n - 1 - p;
  if (s > n - 1 - p) s = n - 1 - p;
  if (s < 0) s = 0;
  std::vector<double> xs(x.begin() + s, x.begin() + s + p + 1);
  std::vector<double> ys(y.begin() + s, y.begin() + s + p + 1);
  return plain_lagrange(xs.data(), ys.data(), p, t);
}

void plain_low_thrust_dy(double t, const double* y, double* dy, const double* para) {
  dy[0] = y[3];
  dy[1] = y[4];
  dy[2] = y[5];
  const int n = static_cast<int>(para[1]);
  const std::vector<double> times(para + 2, para + 2 + n);
  const std::vector<double> ux(para + 2 + n, para + 2 + 2 * n);
  const std::vector<double> uy(para + 2 + 2 * n, para + 2 + 3 * n);
  const std::vector<double> uz(para + 2 + 3 * n, para + 2 + 4 * n);
  double u[3] = {plain_piecewise(times, ux, 3, t), plain_piecewise(times, uy, 3, t),
                 plain_piecewise(times, uz, 3, t)};
  double un = std::sqrt(u[0] * u[0] + u[1] * u[1] + u[2] * u[2]);
  if (un > 0.6) {
    for (double& c : u) c = c * (0.6 / un);
    un = 0.6;
  }
  const double r = std::sqrt(y[0] * y[0] + y[1] * y[1] + y[2] * y[2]);
  for (int i = 0; i < 3; ++i) {
    dy[3 + i] = ((u[i] * 0.001) / y[6]) / 5.930083519670628e-06 - ((y[i] / r) / r) / r;
  }
  dy[6] = ((-un * 0.001 / 4000.0) / 0.00980665) * 5022642.890912784;
}

std::vector<double> block(int line, const std::vector<double>& times,
                          const std::vector<std::vector<double>>& thrust) {
  std::vector<double> b = {static_cast<double>(line), static_cast<double>(times.size())};
  b.insert(b.end(), times.begin(), times.end());
  for (int axis = 0; axis < 3; ++axis) {
    for (const auto& u : thrust) b.push_back(u[axis]);
  }
  return b;
}

bool same_bits(const double* a, const double* b, int n) {
  return std::memcmp(a, b, sizeof(double) * n) == 0;
}

// --- Interpolation -------------------------------------------------------------------------

// At a node, any window through it returns the node's value; a NaN planted outside the
// expected window shows which four points were really taken.
double with_nan_at(int planted, double t) {
  std::vector<double> x, y;
  for (int k = 0; k < 10; ++k) {
    x.push_back(k);
    y.push_back(k == planted ? NAN : k * 1.5);
  }
  return LagInterp(x, y, 3, t);
}

TEST(ThrustInterpolation, NodeSelectsTheIntervalEndingThere) {
  // t = 4 closes the interval [3, 4]: points 2..5.
  EXPECT_EQ(with_nan_at(1, 4.0), 6.0);
  EXPECT_EQ(with_nan_at(6, 4.0), 6.0);
  EXPECT_TRUE(std::isnan(with_nan_at(2, 4.0)));
  EXPECT_TRUE(std::isnan(with_nan_at(5, 4.0)));
  // First node: interval [0, 1], window moved up to the table's start: points 0..3.
  EXPECT_EQ(with_nan_at(4, 0.0), 0.0);
  EXPECT_TRUE(std::isnan(with_nan_at(3, 0.0)));
  // Last node: interval [8, 9], window held inside the table: points 6..9.
  EXPECT_EQ(with_nan_at(5, 9.0), 13.5);
  EXPECT_TRUE(std::isnan(with_nan_at(6, 9.0)));
}

TEST(ThrustInterpolation, BeyondEitherEndUsesTheLastFourPoints) {
  EXPECT_FALSE(std::isnan(with_nan_at(5, 9.5)));
  EXPECT_TRUE(std::isnan(with_nan_at(6, 9.5)));
  // Also before the first point (the table is then extrapolated from its far end).
  EXPECT_FALSE(std::isnan(with_nan_at(0, -0.5)));
  EXPECT_TRUE(std::isnan(with_nan_at(6, -0.5)));
  EXPECT_TRUE(std::isnan(with_nan_at(9, -0.5)));
}

TEST(ThrustInterpolation, ShortTablesUseOnePolynomialThroughAllPoints) {
  EXPECT_EQ(LagInterp(std::vector<double>{2.0}, std::vector<double>{0.25}, 3, 7.0), 0.25);
  EXPECT_DOUBLE_EQ(LagInterp(std::vector<double>{1.0, 3.0}, std::vector<double>{2.0, 6.0}, 3, 2.5),
                   5.0);
  const std::vector<double> x3 = {0.0, 1.0, 3.0};
  const std::vector<double> q = {1.0, 2.0, 10.0};  // 1 + t^2
  EXPECT_NEAR(LagInterp(x3, q, 3, 2.0), 5.0, 1e-14);
  const std::vector<double> x4 = {0.0, 1.0, 2.0, 4.0};
  std::vector<double> c;
  for (double v : x4) c.push_back(v * v * v - 2.0 * v);
  EXPECT_NEAR(LagInterp(x4, c, 3, 3.0), 21.0, 1e-13);
  EXPECT_NEAR(LagInterp(x4, c, 3, 5.0), 115.0, 1e-12);
}

TEST(ThrustInterpolation, CubicDataIsReproducedInsideLongTables) {
  std::vector<double> x, y;
  for (int k = 0; k < 12; ++k) {
    x.push_back(0.5 * k);
    y.push_back(0.1 * x.back() * x.back() * x.back() - x.back() + 0.3);
  }
  for (double t : {0.1, 1.3, 2.77, 5.4, 5.6, -0.3}) {
    EXPECT_NEAR(LagInterp(x, y, 3, t), 0.1 * t * t * t - t + 0.3, 1e-12) << t;
  }
}

TEST(ThrustInterpolation, ArrayFormDegreesZeroAndOne) {
  const double x[] = {1.0, 3.0, 4.0};
  const double y[] = {2.0, 6.0, 11.0};
  EXPECT_EQ(LagInterp(x, y, 0, 9.0), 2.0);
  EXPECT_EQ(LagInterp(x, y, 1, 2.0), 4.0);
  EXPECT_NEAR(LagInterp(x, y, 2, 2.0), 3.0, 1e-14);  // 2 + (t-1)*2 + (t-1)(t-3)*...
}

// --- Forces --------------------------------------------------------------------------------

TEST(LowThrustForces, OverLimitThrustIsClampedForAccelerationAndMassFlow) {
  // 0.7 N split 0.42 / 0.56 / 0, tabulated as a constant.
  const auto b = block(0, {0.0}, {{0.42, 0.56, 0.0}});
  const double y[7] = {1.0, 0.0, 0.0, 0.0, 1.0, 0.0, 800.0};
  double dy[7], gravity[7];
  LowThrustDy(0.3, y, dy, b.data());
  const double line[1] = {0.0};
  TwoBodyDy(0.3, y, gravity, line);
  const double to_canonical = 0.001 / 800.0 / kavren::kACC;
  EXPECT_NEAR(dy[3] - gravity[3], 0.36 * to_canonical, 1e-15);
  EXPECT_NEAR(dy[4] - gravity[4], 0.48 * to_canonical, 1e-15);
  EXPECT_EQ(dy[5], gravity[5]);
  // Mass flow of 0.6 N at 4000 s specific impulse, per canonical time unit.
  EXPECT_NEAR(dy[6], -0.6e-3 / (4000.0 * 0.00980665) * kavren::kTU, 1e-9);
  EXPECT_EQ(dy[0], 0.0);
  EXPECT_EQ(dy[1], 1.0);
}

TEST(LowThrustForces, CoastHasNoMassFlow) {
  const double y[7] = {0.0, 2.0, 0.0, -0.7, 0.0, 0.1, 500.0};
  double dy[7];
  const double line[1] = {0.0};
  TwoBodyDy(0.0, y, dy, line);
  EXPECT_EQ(dy[6], 0.0);
  EXPECT_EQ(dy[4], -0.25);  // 1 / r^2 toward the Sun
  EXPECT_EQ(dy[3], 0.0);
}

TEST(LineReference, TruncationIsDefinedForEveryDouble) {
  EXPECT_EQ(kavren::truncate_to_int(41.9), 41);
  EXPECT_EQ(kavren::truncate_to_int(-3.7), -3);
  EXPECT_EQ(kavren::truncate_to_int(NAN), 0);
  EXPECT_EQ(kavren::truncate_to_int(1e300), 2147483647);
  EXPECT_EQ(kavren::truncate_to_int(-INFINITY), -2147483647 - 1);
  EXPECT_EQ(kavren::truncate_to_int(2147483647.9), 2147483647);
}

// --- The 0.3 AU guard ---------------------------------------------------------------------

const char* const kTail = ": The distance to the Sun of the mining ship is less than 0.3 AU.\n";

TEST(SunDistanceGuard, CoastInsideLimitNamesTheLineAndTheNext) {
  const double line[1] = {41.0};
  double dy[7];
  const double inside[7] = {0.0, 0.2999999, 0.0, 1.0, 0.0, 0.0, 500.0};
  const auto o = capture([&] { TwoBodyDy(0.0, inside, dy, line); });
  EXPECT_TRUE(o.ended);
  EXPECT_EQ(o.status, 1);
  EXPECT_EQ(o.out, std::string("Error101. Position Error between line 42 and line 43") + kTail);
  const double at_limit[7] = {0.3, 0.0, 0.0, 1.0, 0.0, 0.0, 500.0};
  EXPECT_FALSE(capture([&] { TwoBodyDy(0.0, at_limit, dy, line); }).ended);
}

TEST(SunDistanceGuard, ThrustInsideLimitNamesTheTableInterval) {
  // Six table points at t = 0..5 TU, reference line 100.
  const auto b = block(100, {0.0, 1.0, 2.0, 3.0, 4.0, 5.0},
                       std::vector<std::vector<double>>(6, {0.1, 0.0, 0.0}));
  const double inside[7] = {0.1, 0.1, 0.0, 1.0, 0.0, 0.0, 500.0};
  double dy[7];
  auto o = capture([&] { LowThrustDy(2.5, inside, dy, b.data()); });
  EXPECT_EQ(o.status, 1);
  EXPECT_EQ(o.out, std::string("Error101. Position Error between line 103 and line 108") + kTail);
  o = capture([&] { LowThrustDy(2.0, inside, dy, b.data()); });  // the interval ending at 2
  EXPECT_EQ(o.out, std::string("Error101. Position Error between line 102 and line 107") + kTail);
  o = capture([&] { LowThrustDy(7.0, inside, dy, b.data()); });  // past the table
  EXPECT_EQ(o.out, std::string("Error101. Position Error between line 101 and line 106") + kTail);
  // A reference at the top of the int range prints the true sums.
  auto top = b;
  top[0] = 3e9;
  o = capture([&] { LowThrustDy(2.5, inside, dy, top.data()); });
  EXPECT_EQ(o.out,
            std::string("Error101. Position Error between line 2147483650 and line 2147483655") +
                kTail);
}

// --- In-place lookup against the plain form -------------------------------------------------

enum class Shape { kIncreasing, kEqualNeighbours, kShuffled, kDecreasing, kTiny, kHuge };

std::vector<double> table_times(Shape shape, int n, std::mt19937_64& rng) {
  std::uniform_real_distribution<double> step(0.2, 1.5);
  std::vector<double> x;
  double t = std::uniform_real_distribution<double>(-3.0, 3.0)(rng);
  for (int k = 0; k < n; ++k) {
    x.push_back(t);
    t += step(rng);
  }
  switch (shape) {
    case Shape::kIncreasing:
      break;
    case Shape::kEqualNeighbours:
      for (int k = 1; k < n; k += 3) x[k] = x[k - 1];
      break;
    case Shape::kShuffled:
      std::shuffle(x.begin(), x.end(), rng);
      break;
    case Shape::kDecreasing:
      std::reverse(x.begin(), x.end());
      break;
    case Shape::kTiny:  // differences whose products underflow to zero
      for (int k = 0; k < n; ++k) x[k] = (k + 1) * 1e-170;
      break;
    case Shape::kHuge:  // differences that overflow to infinity
      for (int k = 0; k < n; ++k) x[k] = -1.7e308 + k * (1.7e308 / n) + k * (1.7e308 / n);
      break;
  }
  return x;
}

std::vector<double> probe_times(const std::vector<double>& x, std::mt19937_64& rng) {
  std::vector<double> probes(x.begin(), x.end());  // on every node
  const double lo = *std::min_element(x.begin(), x.end());
  const double hi = *std::max_element(x.begin(), x.end());
  std::uniform_real_distribution<double> inside(lo, hi);
  for (int k = 0; k < 8; ++k) probes.push_back(inside(rng));
  for (double v : std::vector<double>{lo - 1.0, hi + 1.0, std::nextafter(lo, -INFINITY), std::nextafter(hi, INFINITY),
                   0.0, 5e-170, 2.5e-170, 1.7e308, -1.7e308,
                                     std::nan(""), HUGE_VAL}) {
    probes.push_back(v);
  }
  return probes;
}

TEST(InPlaceThrustLookup, DerivativesMatchThePlainFormBitForBit) {
  std::mt19937_64 rng(20240611);
  std::uniform_real_distribution<double> thrust(-0.5, 0.5);
  const double y[7] = {0.9, 0.4, -0.05, -0.3, 0.85, 0.01, 750.0};
  int compared = 0;
  for (Shape shape : {Shape::kIncreasing, Shape::kEqualNeighbours, Shape::kShuffled,
                      Shape::kDecreasing, Shape::kTiny, Shape::kHuge}) {
    for (int n : {1, 2, 3, 4, 5, 6, 7, 9, 16, 33, 365}) {
      const auto times = table_times(shape, n, rng);
      std::vector<std::vector<double>> u;
      for (int k = 0; k < n; ++k) u.push_back({thrust(rng), thrust(rng), thrust(rng)});
      const auto b = block(7, times, u);
      kavren::ThrustModel model;
      model.table = kavren::thrust_table_of(b.data(), true);
      model.line = 7;
      if (shape == Shape::kIncreasing || shape == Shape::kTiny || shape == Shape::kHuge ||
          n == 1) {
        EXPECT_TRUE(model.table.ordered);
      }
      // Probes in order and out of order: the lookup starts from the last interval found.
      for (double t : probe_times(times, rng)) {
        double fast[7], plain[7];
        model(t, y, fast);
        plain_low_thrust_dy(t, y, plain, b.data());
        ASSERT_TRUE(same_bits(fast, plain, 7)) << "n " << n << " t " << t;
        ++compared;
      }
    }
  }
  EXPECT_GT(compared, 1000);
}

TEST(InPlaceThrustLookup, VectorInterpolationMatchesThePlainForm) {
  std::mt19937_64 rng(7);
  for (Shape shape : {Shape::kIncreasing, Shape::kEqualNeighbours, Shape::kShuffled}) {
    for (int n : {1, 2, 4, 5, 10, 50}) {
      const auto x = table_times(shape, n, rng);
      std::vector<double> y;
      for (int k = 0; k < n; ++k) y.push_back(std::sin(3.0 * k));
      for (double t : probe_times(x, rng)) {
        for (int p : {1, 2, 3, 5}) {
          const double a = LagInterp(x, y, p, t);
          const double b = plain_piecewise(x, y, p, t);
          ASSERT_TRUE(same_bits(&a, &b, 1)) << n << " " << t << " " << p;
        }
      }
    }
  }
}

// Whole thrust phases on random tables of one-day points: the states reached agree to the
// last bit with the plain form.
TEST(InPlaceThrustLookup, WholeIntegrationsMatchThePlainFormBitForBit) {
  std::mt19937_64 rng(99);
  std::uniform_real_distribution<double> thrust(-0.35, 0.35);
  const double day = 86400.0 / kavren::kTU;
  const double absTol[7] = {1e-10, 1e-10, 1e-10, 1e-12, 1e-12, 1e-12, 1e-08};
  for (int trial = 0; trial < 40; ++trial) {
    const int n = 1 + static_cast<int>(rng() % 60);
    std::vector<double> times;
    std::vector<std::vector<double>> u;
    const double t0 = 0.3 * trial;
    for (int k = 0; k < n; ++k) {
      times.push_back(t0 + k * day);
      u.push_back({thrust(rng), thrust(rng), thrust(rng)});
    }
    if (trial % 10 == 9) std::swap(times[0], times[n - 1]);  // out of order: scanned
    const auto b = block(3, times, u);
    kavren::ThrustModel model;
    model.table = kavren::thrust_table_of(b.data(), true);
    model.line = 3;
    double fast[7] = {0.98, 0.2, 0.01, -0.2, 0.99, 0.0, 1200.0};
    double plain[7];
    std::memcpy(plain, fast, sizeof fast);
    double t_fast = t0, t_plain = t0;
    const double tout = t0 + (n + 0.5) * day;  // runs past the last point
    double work[14 * 7];
    int flag = 1;
    struct NoObserver {
      int land(double, const double*, int) { return 1; }
      int step(double, const double*, int) { return 0; }
      void tick() {}
    } observer;
    RK::rkf78_integrate(model, fast, t_fast, tout, 7, 1e-12, absTol, flag, work, 100000,
                        observer);
    flag = 1;
    RK::RKF78(plain_low_thrust_dy, plain, b.data(), t_plain, tout, 7, 1e-12, absTol, flag, work,
              100000, nullptr);
    ASSERT_TRUE(same_bits(fast, plain, 7)) << "trial " << trial;
    EXPECT_EQ(t_fast, t_plain);
  }
}

}  // namespace
