// Element sets: seeded round trips between the Cartesian state and the classical,
// equinoctial and non-singular elements, and the refusals of invalid sets.
#include "astro/elements.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <random>

#include "support/two_body.h"

namespace kavren::test {
namespace {

// rv -> coe -> rv and rv -> ee -> rv give back the state; rv -> ee agrees with coe -> ee.
void expect_round_trips(const double* rv, bool through_ee) {
  double coe[6], back[6], ee[6], ee_coe[6];
  int flag = -1;
  rv2coe(flag, coe, rv, kMuSun);
  ASSERT_EQ(flag, 1);
  coe2rv(flag, back, coe, kMuSun);
  ASSERT_EQ(flag, 1);
  EXPECT_LE(rv_err(back, rv), 1e-9) << "rv=" << show(rv) << " coe=" << show(coe);
  if (!through_ee) return;
  rv2ee(flag, ee, rv, kMuSun);
  ASSERT_EQ(flag, 1) << show(rv);
  ee2rv(flag, back, ee, kMuSun);
  ASSERT_EQ(flag, 1);
  EXPECT_LE(rv_err(back, rv), 1e-9) << "rv=" << show(rv) << " ee=" << show(ee);
  coe2ee(flag, ee_coe, coe, kMuSun);
  if (flag == 0 || coe[1] > 20.0) return;
  EXPECT_LE(rel_err(ee[0], ee_coe[0]), 1e-10) << show(rv);
  for (int k = 1; k < 5; ++k) EXPECT_NEAR(ee[k], ee_coe[k], 1e-9) << k << " " << show(rv);
  EXPECT_LE(angle_diff(ee[5], ee_coe[5]), 1e-9) << show(rv);
  EXPECT_TRUE(ee[5] >= 0.0 && ee[5] < kTwoPi) << ee[5];
}

TEST(RoundTrip, SeededRandomStates) {
  std::mt19937_64 rng(4242);
  int hyperbolic = 0, elliptic = 0;
  for (int n = 0; n < 20000; ++n) {
    double rv[6];
    random_state(rng, rv);
    const double h[3] = {rv[1] * rv[5] - rv[2] * rv[4], rv[2] * rv[3] - rv[0] * rv[5],
                         rv[0] * rv[4] - rv[1] * rv[3]};
    const double rv_size = std::hypot(rv[0], rv[1], rv[2]) * std::hypot(rv[3], rv[4], rv[5]);
    const double sin_gamma = std::hypot(h[0], h[1], h[2]) / rv_size;
    // Near-radial motion is ill-conditioned in every element set; the equinoctial set also
    // loses digits close to its retrograde singularity.
    if (sin_gamma < 0.05) continue;
    const double v2 = rv[3] * rv[3] + rv[4] * rv[4] + rv[5] * rv[5];
    (0.5 * v2 < kMuSun / std::hypot(rv[0], rv[1], rv[2]) ? elliptic : hyperbolic)++;
    expect_round_trips(rv, h[2] / rv_size / sin_gamma > -0.98);
    if (HasFailure()) return;
  }
  EXPECT_GT(elliptic, 5000);
  EXPECT_GT(hyperbolic, 2000);
  // Motion in the x-z plane: the node line lies exactly along x.
  const double polar[6] = {0.72 * kAU, 0.0, 0.96 * kAU, -24.0, 0.0, 18.0};
  expect_round_trips(polar, true);
}

// Circles, ellipses, parabolas and hyperbolas, equatorial, polar, retrograde and at any
// inclination, angles beyond a turn.
TEST(RoundTrip, SeededRandomElementsOfEveryShape) {
  std::mt19937_64 rng(99);
  std::uniform_real_distribution<double> u(0.0, 1.0);
  for (int n = 0; n < 20000; ++n) {
    const double e = std::array<double, 4>{0.0, 0.97 * u(rng), 1.0, 1.01 + 5.0 * u(rng)}[n % 4];
    const double i = std::array<double, 4>{0.0, kPi / 2.0, kPi, kPi * u(rng)}[n / 4 % 4];
    const double lim = e < 1.0 ? 10.0 : kPi - std::acos(1.0 / e) - 0.05;
    const double coe[6] = {
        kAU * (0.2 + 3.8 * u(rng)), e, i, 20.0 * u(rng) - 10.0, 20.0 * u(rng) - 10.0,
        lim * (2.0 * u(rng) - 1.0)};
    double rv[6];
    int flag = -1;
    coe2rv(flag, rv, coe, kMuSun);
    ASSERT_EQ(flag, 1);
    expect_round_trips(rv, i < 170.0 * kDeg);
    // coe -> ee -> coe: a circle's equinoctial set has f = g = 0 exactly.
    double ee[6], coe_ee[6], rv_ee[6];
    coe2ee(flag, ee, coe, kMuSun);
    if (flag == 1) {
      ee2coe(flag, coe_ee, ee, kMuSun);
      ASSERT_EQ(flag, 1) << show(coe);
      coe2rv(flag, rv_ee, coe_ee, kMuSun);
      EXPECT_LE(rv_err(rv, rv_ee), 1e-9) << show(coe);
    }
    // The non-singular set describes the same orbit.
    if (e < 1.0) {
      double soe[6], back[6], rv_back[6];
      coe2soe(coe, soe);
      soe2coe(soe, back);
      EXPECT_TRUE(std::fabs(back[3]) < kTwoPi && std::fabs(back[5]) < kTwoPi) << show(back);
      coe2rv(flag, rv_back, back, kMuSun);
      EXPECT_LE(rv_err(rv, rv_back), 1e-10) << show(coe);
    }
    if (HasFailure()) return;
  }
}

TEST(Equinoctial, InvalidClassicalSetsAreRefused) {
  struct Case {
    int index;
    double value, mu;
    int expected;
  };
  const Case cases[] = {
      {0, -1.0, kMuSun, 0},        {1, -0.01, kMuSun, 0}, {2, -0.01, kMuSun, 0},
      {2, kPi, kMuSun, 1},         {0, 0.0, kMuSun, 1},   {0, kAU, 0.0, 0},
      {0, NAN, kMuSun, 0},         {5, NAN, kMuSun, 0},   {2, kPi + 0.01, kMuSun, 0},
      {5, 150.0 * kDeg, kMuSun, 0}};  // e = 2: beyond the asymptote
  for (const Case& c : cases) {
    double coe[6] = {kAU, c.index == 5 ? 2.0 : 0.1, 0.5, 0.1, 0.2, 0.3};
    double ee[6] = {7, 7, 7, 7, 7, 7};
    coe[c.index] = c.value;
    int flag = -1;
    coe2ee(flag, ee, coe, c.mu);
    EXPECT_EQ(flag, c.expected) << c.index << " " << c.value;
    for (int k = 0; k < 6 && c.expected == 0; ++k) EXPECT_EQ(ee[k], 7.0);
  }
}

}  // namespace
}  // namespace kavren::test
