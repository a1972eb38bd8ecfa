// Kepler propagation: against an independent RK4 integration, time of flight against
// propagation, full periods, the equinoctial path against the Cartesian one, refusals.
#include "astro/propagation.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <random>
#include <string>

#include "astro/elements.h"
#include "support/capture.h"
#include "support/two_body.h"

namespace kavren::test {
namespace {

// A parabola asked to fly beyond half a turn prints its refusal in GBK and returns f0.
TEST(TrueAnomalyFlight, ParabolaOutsideHalfTurnPrintsTheGbkLine) {
  const std::string hex =
      "b6d4d3dac5d7ceefcfdfb9ecb5c02cb3f5cabcd5e6bdfcb5e3bdc7d3a6d4da2d313830d6c1313830b6c8d6aebce4"
      "2e";
  std::string expected;
  for (std::size_t k = 0; k < hex.size(); k += 2)
    expected += char(std::stoi(hex.substr(k, 2), nullptr, 16));
  for (double f0 : {3.2, -3.2}) {
    int flag = -1;
    double f = 0.0;
    const Outcome o =
        capture([&] { f = f0dt2ft(flag, f0, 1000.0, 7000.0, 1.0, 398600.4418, 100, 1e-14); });
    EXPECT_EQ(o.out, expected + "\n");
    EXPECT_EQ(flag, 0);
    EXPECT_EQ(f, f0);
  }
}

// Elliptic, parabolic and hyperbolic arcs.
TEST(TrueAnomalyFlight, TimeOfFlightInvertsPropagation) {
  std::mt19937_64 rng(123);
  std::uniform_real_distribution<double> u(0.0, 1.0);
  for (int n = 0; n < 6000; ++n) {
    const double e = std::array<double, 3>{0.95 * u(rng), 1.0, 1.01 + 4.0 * u(rng)}[n % 3];
    const double span = 0.98 * (e < 1.0 ? kPi : kPi - std::acos(1.0 / e));
    double f0 = span * (2.0 * u(rng) - 1.0), ft = span * (2.0 * u(rng) - 1.0);
    if (ft < f0) std::swap(f0, ft);
    const double a = kAU * (0.2 + 3.0 * u(rng));
    int flag = -1;
    const double dt = f0ft2dt(flag, f0, ft, a, e, kMuSun);
    ASSERT_EQ(flag, 1);
    ASSERT_GE(dt, 0.0);
    const double f = f0dt2ft(flag, f0, dt, a, e, kMuSun, 100, 1e-14);
    ASSERT_EQ(flag, 1);
    ASSERT_NEAR(f, ft, 1e-9) << "e=" << e << " a=" << a << " f0=" << f0 << " ft=" << ft;
  }
}

// Canonical units, periapsis about 1. Parabolas go through the classical elements, where
// e == 1 holds exactly; the last case is an exactly parabolic Cartesian state (mu = 2).
TEST(StatePropagation, AgreesWithNumericalIntegration) {
  struct Case {
    double coe[6];
    double dt;
  };
  const Case cases[] = {
      {{1.3, 0.4, 0.5, 1.0, 2.0, -2.0}, 7.0},    {{1.0, 0.0, 0.2, 0.3, 0.0, 1.0}, 3.0},
      {{1.0, 2.0, 2.5, 1.0, 0.5, -1.5}, 4.0},    {{1.0, 1.0, 0.7, 0.3, 0.2, -2.0}, 5.0},
      {{1.0, 1.0, 0.7, 0.3, 0.2, -0.2}, 2.0e-3}, {{1.0, 1.0, 0.7, 0.3, 0.2, 1.0}, -3.0},
      {{0.0, 0.0, 0.0, 0.0, 0.0, 0.0}, -2.0},    {{0.0, 0.0, 0.0, 0.0, 0.0, 0.0}, 1.0e-3},
      {{0.0, 0.0, 0.0, 0.0, 0.0, 0.0}, 3.0}};
  for (const Case& c : cases) {
    SCOPED_TRACE(show(c.coe) + " dt " + std::to_string(c.dt));
    const bool cartesian = c.coe[0] == 0.0;
    const double mu = cartesian ? 2.0 : 1.0;
    double rv0[6] = {0.0, 1.0, 0.0, -2.0, 0.0, 0.0}, rv_ref[6], rv_t[6];
    int flag = -1;
    if (!cartesian) coe2rv(flag, rv0, c.coe, mu);
    std::copy(rv0, rv0 + 6, rv_ref);
    rk4<6>(Gravity{mu}, 0.0, c.dt, 20000, rv_ref);
    if (!cartesian) {
      double coe_t[6];
      coe02coef(flag, coe_t, c.coe, c.dt, mu);
      ASSERT_EQ(flag, 1);
      for (int k = 0; k < 5; ++k) EXPECT_EQ(coe_t[k], c.coe[k]);
      coe2rv(flag, rv_t, coe_t, mu);
      EXPECT_LE(rv_err(rv_t, rv_ref), 1e-10) << show(rv_t) << " / " << show(rv_ref);
    }
    if (c.coe[1] == 1.0) continue;
    rv02rvf(flag, rv_t, rv0, c.dt, mu);
    ASSERT_EQ(flag, 1);
    EXPECT_LE(rv_err(rv_t, rv_ref), 1e-10) << show(rv_t) << " / " << show(rv_ref);
  }
}

// A full period returns to the start; half a period forwards and back meet.
TEST(StatePropagation, OneFullPeriodReturnsToTheStart) {
  std::mt19937_64 rng(2718);
  int checked = 0;
  for (int n = 0; n < 3000; ++n) {
    double rv0[6], coe[6], rv_t[6], half_fwd[6], half_back[6];
    random_state(rng, rv0);
    int flag = -1;
    rv2coe(flag, coe, rv0, kMuSun);
    if (coe[1] >= 0.98) continue;
    const double T = kTwoPi * std::sqrt(coe[0] * coe[0] * coe[0] / kMuSun);
    rv02rvf(flag, rv_t, rv0, T, kMuSun);
    ASSERT_EQ(flag, 1);
    ASSERT_LE(rv_err(rv_t, rv0), 1e-9) << show(rv0);
    rv02rvf(flag, half_fwd, rv0, 0.5 * T, kMuSun);
    rv02rvf(flag, half_back, rv0, -0.5 * T, kMuSun);
    ASSERT_LE(rv_err(half_fwd, half_back), 1e-9) << show(rv0);
    ++checked;
  }
  EXPECT_GT(checked, 1000);
}

// The equinoctial step keeps the orbit and lands where the Cartesian one does; the step
// on the true longitude alone agrees, and its time of flight inverts it.
TEST(StatePropagation, EquinoctialMatchesCartesian) {
  std::mt19937_64 rng(4);
  std::uniform_real_distribution<double> u(0.0, 1.0);
  for (int n = 0; n < 2000; ++n) {
    const double coe[6] = {kAU * (0.3 + 3.0 * u(rng)),
                           0.9 * u(rng),
                           2.5 * u(rng),
                           kTwoPi * u(rng),
                           kTwoPi * u(rng),
                           kTwoPi * u(rng)};
    double ee0[6], ee_t[6], rv0[6], rv_t[6], rv_ee[6];
    int flag = -1;
    coe2ee(flag, ee0, coe, kMuSun);
    ASSERT_EQ(flag, 1);
    const double dt = 86400.0 * 1000.0 * (u(rng) - 0.3);
    ee02eef(flag, ee_t, ee0, dt, kMuSun);
    ASSERT_EQ(flag, 1);
    for (int k = 0; k < 5; ++k) ASSERT_LE(rel_err(ee_t[k], ee0[k]), 1e-10) << k;
    ee2rv(flag, rv0, ee0, kMuSun);
    rv02rvf(flag, rv_t, rv0, dt, kMuSun);
    ee2rv(flag, rv_ee, ee_t, kMuSun);
    ASSERT_LE(rv_err(rv_ee, rv_t), 1e-9) << show(coe);
    const double Lt = L0dt2Lt(flag, ee0[5], dt, ee0, kMuSun);
    ASSERT_EQ(flag, 1);
    ASSERT_LE(angle_diff(Lt, ee_t[5]), 1e-9);
    const double L0 = ee0[5], L1 = L0 + 0.1 + 3.9 * u(rng);
    const double flight = L0Lt2dt(flag, L0, L1, ee0, kMuSun);
    ASSERT_EQ(flag, 1);
    ASSERT_GT(flight, 0.0);
    ASSERT_LE(angle_diff(L0dt2Lt(flag, L0, flight, ee0, kMuSun), L1), 1e-9);
  }
}

TEST(StatePropagation, RefusalsLeaveTheOutputUntouched) {
  const double ee[6] = {1.2 * kAU, 0.1, -0.2, 0.05, 0.03, 0.0};
  int flag = -1;
  EXPECT_EQ(L0Lt2dt(flag, 1.0, 0.5, ee, kMuSun), 0.0);  // backwards
  EXPECT_EQ(flag, 0);
  double out[6] = {9, 9, 9, 9, 9, 9};
  const double ee_bad[6] = {-1.0, 0.1, 0.1, 0.0, 0.0, 0.0};
  ee02eef(flag, out, ee_bad, 100.0, kMuSun);
  EXPECT_EQ(flag, 0);
  // A hyperbola beyond its asymptote cannot be propagated; f0 is returned.
  const double coe_beyond[6] = {kAU, 2.0, 0.1, 0.0, 0.0, 150.0 * kDeg};
  coe02coef(flag, out, coe_beyond, 100.0, kMuSun);
  EXPECT_EQ(flag, 0);
  EXPECT_EQ(out[5], 150.0 * kDeg);
  EXPECT_EQ(f0ft2dt(flag, 0.0, 2.5, kAU, 2.0, kMuSun), 0.0);  // the asymptote is at 2.094
  EXPECT_EQ(flag, 0);
  const double rv_zero_mu[6] = {kAU, 0.0, 0.0, 0.0, 30.0, 0.0};
  double rv_out[6] = {9, 9, 9, 9, 9, 9};
  rv02rvf(flag, rv_out, rv_zero_mu, 100.0, -1.0);
  EXPECT_EQ(flag, 0);
  for (double x : rv_out) EXPECT_EQ(x, 9.0);
}

}  // namespace
}  // namespace kavren::test
