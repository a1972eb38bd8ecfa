// Equations of motion against a plain form written the obvious way (arrays rebuilt at
// every call, the table scanned from its start), the thrust cap and the 0.3 AU guard.
#include "lowthrust/dynamics.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "astro/constants.h"
#include "console/checks.h"
#include "lowthrust/rkf78_loop.h"
#include "support/capture.h"

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

// --- The 0.3 AU guard ---------------------------------------------------------------------

const char* const kTail = ": The distance to the Sun of the mining ship is less than 0.3 AU.\n";

// Six table points at t = 0..5 TU after reference line 100 (the block's first line): the
// message names the lines of the interval around t; a reference at the top of the int
// range prints the true sums.
TEST(SunDistanceGuard, ThrustInsideLimitNamesTheTableInterval) {
  const auto b = block(100, {0.0, 1.0, 2.0, 3.0, 4.0, 5.0},
                       std::vector<std::vector<double>>(6, {0.1, 0.0, 0.0}));
  const double inside[7] = {0.1, 0.1, 0.0, 1.0, 0.0, 0.0, 500.0};
  // An unordered table is scanned up to its last interval: 0.5 lies in none of them,
  // though the last time (1.5) and the first thrust component (0.1) enclose it.
  const auto unordered = block(100, {1.0, 2.0, 3.0, 4.0, 5.0, 1.5},
                               std::vector<std::vector<double>>(6, {0.1, 0.0, 0.0}));
  const struct {
    const std::vector<double>& block;
    double reference, t;
    const char* lines;
  } cases[] = {{b, 100, 2.5, "line 103 and line 108"},
               {b, 100, 2.0, "line 102 and line 107"},  // the interval ending at 2
               {b, 100, 7.0, "line 101 and line 106"},  // past the table
               {b, 3e9, 2.5, "line 2147483650 and line 2147483655"},
               {unordered, 100, 0.5, "line 101 and line 106"}};
  for (const auto& c : cases) {
    auto table = c.block;
    table[0] = c.reference;
    double dy[7];
    const auto o = capture([&] { LowThrustDy(c.t, inside, dy, table.data()); });
    EXPECT_EQ(o.status, 1);
    EXPECT_EQ(o.out, std::string("Error101. Position Error between ") + c.lines + kTail);
  }
  // A coast names the line of its start and the next.
  const double coast[2] = {100.0, 7.0};
  double dy[7];
  EXPECT_EQ(capture([&] { TwoBodyDy(0.0, inside, dy, coast); }).out,
            std::string("Error101. Position Error between line 101 and line 102") + kTail);
}

// --- Against the plain form -------------------------------------------------------------

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
    case Shape::kTiny:  // two nodes below 0 whose differences from it underflow in a product
      for (int k = 0; k < n; ++k) x[k] = k < 2 ? -std::pow(10.0, -170 - k) : k - 1.0;
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
  for (double v : std::vector<double>{lo - 1.0, hi + 1.0, std::nextafter(lo, -INFINITY),
                                      std::nextafter(hi, INFINITY), 0.0, 5e-170, 2.5e-170, 1.7e308,
                                      -1.7e308, std::nan(""), HUGE_VAL}) {
    probes.push_back(v);
  }
  return probes;
}

TEST(PlainForm, DerivativesAgreeBitForBit) {
  std::mt19937_64 rng(20240611);
  std::uniform_real_distribution<double> thrust(-0.5, 0.5);
  const double y[7] = {0.9, 0.4, -0.05, -0.3, 0.85, 0.01, 750.0};
  int compared = 0;
  for (Shape shape : {Shape::kIncreasing, Shape::kEqualNeighbours, Shape::kShuffled,
                      Shape::kDecreasing, Shape::kTiny, Shape::kHuge}) {
    for (int n : {1, 2, 3, 5, 365}) {
      const auto times = table_times(shape, n, rng);
      std::vector<std::vector<double>> u;
      for (int k = 0; k < n; ++k) u.push_back({thrust(rng), thrust(rng), thrust(rng)});
      const auto b = block(7, times, u);
      kavren::ThrustModel model;
      model.table = kavren::thrust_table_of(b.data(), true);
      model.line = 7;
      if (shape == Shape::kIncreasing || shape == Shape::kTiny || shape == Shape::kHuge || n == 1) {
        EXPECT_TRUE(model.table.ordered);
      }
      const auto probes = probe_times(times, rng);
      for (double t : probes) {
        double fast[7], plain[7];
        LowThrustDy(t, y, fast, b.data());
        plain_low_thrust_dy(t, y, plain, b.data());
        ASSERT_TRUE(same_bits(fast, plain, 7)) << "n " << n << " t " << t;
        ++compared;
      }
      // The arc check's model on a table it knows is ordered: bisection, and a lookup that
      // starts from the last interval found (the probes jump back and forth); every other
      // probe starts without one.
      for (std::size_t k = 0; k < probes.size(); ++k) {
        const double t = probes[k];
        double fast[7], plain[7];
        if (k % 2 == 1) model.hint = -1;
        model(t, y, fast);
        plain_low_thrust_dy(t, y, plain, b.data());
        ASSERT_TRUE(same_bits(fast, plain, 7)) << "ordered, n " << n << " t " << t;
      }
    }
  }
  EXPECT_GT(compared, 1000);
}

TEST(PlainForm, PiecewiseInterpolationAgreesBitForBit) {
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
  EXPECT_EQ(LagInterp(std::vector<double>{}, std::vector<double>{}, 3, 0.5), 0.0);
}

}  // namespace
