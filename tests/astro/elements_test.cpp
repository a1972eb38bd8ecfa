#include "astro/elements.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <random>

#include "astro_test_util.h"

using astro_test::angle_diff;
using astro_test::kAU;
using astro_test::kDeg;
using astro_test::kMuSun;
using astro_test::kPi;
using astro_test::kTwoPi;
using astro_test::rv_err;
using astro_test::show;

namespace {

constexpr double kSentinel = -123.456;

void fill_sentinel(double* x) {
  for (int k = 0; k < 6; ++k) x[k] = kSentinel;
}

void rv_of(const double* coe, double* rv, double mu = kMuSun) {
  int flag = -1;
  coe2rv(flag, rv, coe, mu);
  ASSERT_EQ(flag, 1);
}

// rv -> coe -> rv and rv -> ee -> rv must give back the state.
void expect_round_trips(const double* rv, double mu, double tol, bool through_ee = true) {
  double coe[6], back[6], ee[6];
  int flag = -1;
  rv2coe(flag, coe, rv, mu);
  ASSERT_EQ(flag, 1);
  coe2rv(flag, back, coe, mu);
  ASSERT_EQ(flag, 1);
  EXPECT_LE(rv_err(back, rv), tol) << "rv=" << show(rv) << " coe=" << show(coe);
  if (!through_ee) return;
  flag = -1;
  rv2ee(flag, ee, rv, mu);
  ASSERT_EQ(flag, 1) << show(rv);
  ee2rv(flag, back, ee, mu);
  ASSERT_EQ(flag, 1);
  EXPECT_LE(rv_err(back, rv), tol) << "rv=" << show(rv) << " ee=" << show(ee);
}

TEST(RoundTrip, SeededRandomStatesThroughClassicalAndEquinoctial) {
  std::mt19937_64 rng(4242);
  int hyperbolic = 0, elliptic = 0;
  for (int n = 0; n < 20000; ++n) {
    double rv[6];
    astro_test::random_state(rng, rv);
    const double r = std::sqrt(rv[0] * rv[0] + rv[1] * rv[1] + rv[2] * rv[2]);
    const double v = std::sqrt(rv[3] * rv[3] + rv[4] * rv[4] + rv[5] * rv[5]);
    const double hz = (rv[0] * rv[4] - rv[1] * rv[3]) / (r * v);
    const double sin_gamma =
        std::sqrt(std::pow(rv[1] * rv[5] - rv[2] * rv[4], 2) +
                  std::pow(rv[2] * rv[3] - rv[0] * rv[5], 2) + std::pow(hz * r * v, 2)) /
        (r * v);
    // Skip near-radial motion (|r x v| tiny) where every element set is ill-conditioned;
    // the equinoctial set also loses digits close to its retrograde singularity.
    if (sin_gamma < 0.05) continue;
    (astro_test::energy(rv, kMuSun) < 0.0 ? elliptic : hyperbolic)++;
    expect_round_trips(rv, kMuSun, 1.0e-9, hz / sin_gamma > -0.98);
    if (HasFailure()) return;
  }
  EXPECT_GT(elliptic, 5000);
  EXPECT_GT(hyperbolic, 2000);
}

TEST(RoundTrip, SeededRandomElementsOfEveryShape) {
  std::mt19937_64 rng(99);
  std::uniform_real_distribution<double> angle(-kTwoPi, kTwoPi);
  std::uniform_real_distribution<double> incl(0.0, kPi);
  for (int n = 0; n < 20000; ++n) {
    const int shape = n % 4;  // circle, ellipse, parabola, hyperbola
    double e = 0.0;
    if (shape == 1) e = std::uniform_real_distribution<double>(1e-6, 0.97)(rng);
    if (shape == 2) e = 1.0;
    if (shape == 3) e = std::uniform_real_distribution<double>(1.01, 6.0)(rng);
    double f = angle(rng);
    if (e >= 1.0) {
      const double lim = kPi - std::acos(1.0 / e) - 0.05;
      f = std::uniform_real_distribution<double>(-lim, lim)(rng);
    }
    const double coe[6] = {kAU * std::uniform_real_distribution<double>(0.2, 4.0)(rng),
                           e,
                           incl(rng),
                           angle(rng),
                           angle(rng),
                           f};
    double rv[6];
    rv_of(coe, rv);
    expect_round_trips(rv, kMuSun, 1.0e-9, coe[2] < 170.0 * kDeg);
    if (HasFailure()) return;
  }
}

TEST(RoundTrip, SpecialGeometries) {
  struct Case {
    const char* name;
    double coe[6];
  };
  const Case cases[] = {
      {"circular inclined", {1.2 * kAU, 0.0, 0.4, 1.0, 0.0, 2.0}},
      {"circular equatorial", {1.0 * kAU, 0.0, 0.0, 0.0, 0.0, 0.7}},
      {"elliptic equatorial", {1.5 * kAU, 0.3, 0.0, 0.0, 1.1, -2.5}},
      {"polar", {2.0 * kAU, 0.2, kPi / 2.0, 0.3, 0.9, 1.7}},
      {"polar circular", {2.0 * kAU, 0.0, kPi / 2.0, 0.3, 0.0, 1.7}},
      {"retrograde", {1.1 * kAU, 0.4, 150.0 * kDeg, 4.0, 5.0, 0.2}},
      {"retrograde equatorial", {1.1 * kAU, 0.4, kPi, 0.0, 5.0, 0.2}},
      {"parabolic", {0.8 * kAU, 1.0, 0.5, 2.0, 3.0, 2.5}},
      {"parabolic equatorial", {0.8 * kAU, 1.0, 0.0, 0.0, 3.0, -1.0}},
      {"hyperbolic", {0.5 * kAU, 3.0, 1.0, 2.0, 3.0, -1.5}},
      {"hyperbolic retrograde", {0.5 * kAU, 1.5, 2.8, 2.0, 3.0, 0.5}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    double rv[6];
    rv_of(c.coe, rv);
    expect_round_trips(rv, kMuSun, 1.0e-9, c.coe[2] < 3.0);
  }
}

TEST(RvToCoe, RecoversKnownElements) {
  const double coe0[6] = {1.7 * kAU, 0.25, 0.3, 1.2, 2.3, 0.9};
  double rv[6], coe[6];
  rv_of(coe0, rv);
  int flag = -1;
  rv2coe(flag, coe, rv, kMuSun);
  ASSERT_EQ(flag, 1);
  for (int k = 0; k < 3; ++k) EXPECT_LE(astro_test::rel_err(coe[k], coe0[k]), 1e-11) << k;
  EXPECT_NEAR(coe[3], coe0[3], 1e-11);
  EXPECT_NEAR(coe[4], coe0[4], 1e-11);
  // The anomaly is the argument of latitude less omega, each within half a turn: the
  // same point, possibly one turn below.
  EXPECT_NEAR(angle_diff(coe[5], coe0[5]), 0.0, 1e-11);
  EXPECT_GT(coe[5], -kTwoPi);
  EXPECT_LT(coe[5], kTwoPi);
}

TEST(RvToCoe, HyperbolaKeepsPositiveSemiMajorAxis) {
  // Periapsis 1 AU at 1.5 times the escape speed: energy v^2/2 - mu/r = mu / (2a) > 0.
  const double r = kAU, v = 1.5 * std::sqrt(2.0 * kMuSun / r);
  const double rv[6] = {r, 0.0, 0.0, 0.0, v, 0.0};
  double coe[6];
  int flag = -1;
  rv2coe(flag, coe, rv, kMuSun);
  ASSERT_EQ(flag, 1);
  EXPECT_NEAR(coe[0], kMuSun / (v * v - 2.0 * kMuSun / r), 1e-6);
  EXPECT_NEAR(coe[1], r * v * v / kMuSun - 1.0, 1e-12);
  EXPECT_NEAR(coe[5], 0.0, 1e-12);
}

TEST(RvToCoe, ParabolaStoresPeriapsisDistance) {
  // Periapsis 1 at the escape speed 2 with mu = 2: every step is exact, so e == 1.
  const double rv[6] = {0.0, 1.0, 0.0, -2.0, 0.0, 0.0};
  double coe[6];
  int flag = -1;
  rv2coe(flag, coe, rv, 2.0);
  ASSERT_EQ(flag, 1);
  ASSERT_EQ(coe[1], 1.0);
  EXPECT_EQ(coe[0], 1.0);  // p / 2, the periapsis distance
  EXPECT_EQ(coe[2], 0.0);
  EXPECT_NEAR(coe[4], kPi / 2.0, 1e-15);
  EXPECT_EQ(coe[5], 0.0);
  double back[6];
  coe2rv(flag, back, coe, 2.0);
  EXPECT_LE(rv_err(back, rv), 1e-15);
}

TEST(RvToCoe, ExactCircularEquatorialTakesTheDegenerateBranch) {
  // These states give an eccentricity vector of exactly zero and a normal of exactly +z.
  const double rv[6] = {0.0, 1.0, 0.0, -2.0, 0.0, 0.0};
  double coe[6];
  int flag = -1;
  rv2coe(flag, coe, rv, 4.0);
  ASSERT_EQ(flag, 1);
  EXPECT_EQ(coe[0], 1.0);
  EXPECT_EQ(coe[1], 0.0);
  EXPECT_EQ(coe[2], 0.0);
  EXPECT_EQ(coe[3], 0.0);
  EXPECT_EQ(coe[4], 0.0);
  EXPECT_NEAR(coe[5], kPi / 2.0, 1e-15);  // the true longitude

  const double rv2[6] = {-1.0, -1.0, 0.0, 0.5, -0.5, 0.0};  // true longitude 225 deg
  rv2coe(flag, coe, rv2, 0.5 * std::sqrt(2.0));
  ASSERT_EQ(flag, 1);
  EXPECT_NEAR(coe[1], 0.0, 1e-15);
  EXPECT_EQ(coe[3], 0.0);
  EXPECT_NEAR(angle_diff(coe[4] + coe[5], 225.0 * kDeg), 0.0, 1e-12);
}

TEST(RvToCoe, ExactCircularPolarTakesTheNodalBranch) {
  const double rv[6] = {1.0, 0.0, 0.0, 0.0, 0.0, 1.0};
  double coe[6];
  int flag = -1;
  rv2coe(flag, coe, rv, 1.0);
  ASSERT_EQ(flag, 1);
  EXPECT_EQ(coe[1], 0.0);
  EXPECT_NEAR(coe[2], kPi / 2.0, 1e-15);
  EXPECT_EQ(coe[3], 0.0);
  EXPECT_EQ(coe[4], 0.0);
  EXPECT_EQ(coe[5], 0.0);
}

TEST(RvToCoe, EquatorialEllipseMeasuresPeriapsisFromXAxis) {
  for (double w : {0.4, 2.0, 4.5}) {
    for (double i : {0.0, kPi}) {
      const double coe0[6] = {kAU, 0.3, i, 0.0, w, 0.8};
      double rv[6], coe[6];
      rv_of(coe0, rv);
      rv[2] = 0.0;  // make the plane exactly equatorial
      rv[5] = 0.0;
      int flag = -1;
      rv2coe(flag, coe, rv, kMuSun);
      ASSERT_EQ(flag, 1);
      EXPECT_EQ(coe[3], 0.0);
      EXPECT_NEAR(coe[2], i, 1e-15);
      // Measured about the orbit normal in both senses, as the way back reads it.
      EXPECT_NEAR(angle_diff(coe[4], w), 0.0, 1e-10) << "w=" << w << " i=" << i;
      const double r_dir = std::atan2(rv[1], rv[0]);
      const double expected_dir = i == 0.0 ? w + 0.8 : -(w + 0.8);
      EXPECT_NEAR(angle_diff(r_dir, expected_dir), 0.0, 1e-10);
      EXPECT_NEAR(coe[5], 0.8, 1e-10);
    }
  }
}

TEST(RvToCoe, TrueAnomalyBeforePeriapsisStaysNegative) {
  const double coe0[6] = {1.3 * kAU, 0.2, 0.5, 1.0, 2.0, -30.0 * kDeg};
  double rv[6], coe[6], ee[6], coe_ee[6];
  rv_of(coe0, rv);
  int flag = -1;
  rv2coe(flag, coe, rv, kMuSun);
  ASSERT_EQ(flag, 1);
  EXPECT_NEAR(coe[5], -30.0 * kDeg, 1e-12);
  coe2ee(flag, ee, coe, kMuSun);
  ASSERT_EQ(flag, 1);
  ee2coe(flag, coe_ee, ee, kMuSun);
  ASSERT_EQ(flag, 1);
  EXPECT_NEAR(coe_ee[5], 330.0 * kDeg, 1e-12);  // the equinoctial way back wraps
  EXPECT_NEAR(coe_ee[3], 1.0, 1e-12);
  EXPECT_NEAR(coe_ee[4], 2.0, 1e-12);
}

TEST(RvToCoe, HyperbolicAnomalyStaysBetweenTheAsymptotes) {
  const double e = 2.0, delta = std::acos(1.0 / e);
  // Arguments of periapsis near half a turn make the argument of latitude wrap, so the
  // difference u - omega lands a turn off on either side before it is brought back.
  for (double w : {0.1, 3.0, 3.3, 6.0}) {
    for (double f : {119.9 * kDeg, -119.9 * kDeg, 100.0 * kDeg, -100.0 * kDeg, -0.5}) {
      const double coe0[6] = {0.7 * kAU, e, 0.3, 0.2, w, f};
      double rv[6], coe[6];
      rv_of(coe0, rv);
      int flag = -1;
      rv2coe(flag, coe, rv, kMuSun);
      ASSERT_EQ(flag, 1);
      EXPECT_GE(coe[5], delta - kPi) << f << " " << w;
      EXPECT_LE(coe[5], kPi - delta) << f << " " << w;
      EXPECT_NEAR(coe[5], f, 1e-9) << w;
    }
  }
}

TEST(CoeToRv, PointBeyondTheAsymptoteGetsTheSentinelRadius) {
  const double coe[6] = {1.0e7, 2.0, 0.3, 0.4, 0.5, 150.0 * kDeg};
  double rv[6];
  rv_of(coe, rv);
  // The position is 1e308 times a unit vector; the velocity is still the conic's.
  const double x = rv[0] / 1e308, y = rv[1] / 1e308, z = rv[2] / 1e308;
  EXPECT_NEAR(std::sqrt(x * x + y * y + z * z), 1.0, 1e-12);
  const double p = 1.0e7 * 3.0, cf = std::cos(150.0 * kDeg);
  const double speed = std::sqrt(rv[3] * rv[3] + rv[4] * rv[4] + rv[5] * rv[5]);
  EXPECT_NEAR(speed, std::sqrt(kMuSun / p) * std::sqrt(1.0 + 2.0 * 2.0 * cf + 4.0), 1e-9);
}

TEST(CoeToRv, ParabolaUsesTwiceTheFirstElementAsSemiLatusRectum) {
  const double mu = 398600.4418;
  const double coe[6] = {7000.0, 1.0, 0.0, 0.0, 0.0, 0.0};
  double rv[6];
  rv_of(coe, rv, mu);
  // Periapsis of p = 14000 km: at 7000 km, at the local escape speed.
  EXPECT_NEAR(rv[0], 7000.0, 1e-9);
  EXPECT_NEAR(rv[4], std::sqrt(2.0 * mu / 7000.0), 1e-12);
  const double at90[6] = {7000.0, 1.0, 0.0, 0.0, 0.0, kPi / 2.0};
  rv_of(at90, rv, mu);
  EXPECT_NEAR(rv[1], 14000.0, 1e-9);
}

TEST(CoeToRv, VisVivaAndAngularMomentum) {
  std::mt19937_64 rng(5);
  std::uniform_real_distribution<double> u(0.0, 1.0);
  for (int n = 0; n < 2000; ++n) {
    const double a = kAU * (0.3 + 3.0 * u(rng)), e = 0.95 * u(rng);
    const double coe[6] = {a, e, kPi * u(rng), kTwoPi * u(rng), kTwoPi * u(rng), kTwoPi * u(rng)};
    double rv[6];
    rv_of(coe, rv);
    EXPECT_LE(astro_test::rel_err(astro_test::energy(rv, kMuSun), -kMuSun / (2.0 * a)), 1e-12);
    const double hz = rv[0] * rv[4] - rv[1] * rv[3];
    const double h = std::sqrt(kMuSun * a * (1.0 - e * e));
    EXPECT_LE(astro_test::rel_err(hz, h * std::cos(coe[2])), 1e-10);
  }
}

TEST(Equinoctial, CoeToEeRefusesInclinationBeyondPi) {
  const double coe[6] = {kAU, 0.1, kPi + 0.01, 0.1, 0.2, 0.3};
  double ee[6];
  fill_sentinel(ee);
  int flag = -1;
  coe2ee(flag, ee, coe, kMuSun);
  EXPECT_EQ(flag, 0);
  for (int k = 0; k < 6; ++k) EXPECT_EQ(ee[k], kSentinel);
}

TEST(Equinoctial, CoeToEeValidation) {
  const double good[6] = {kAU, 0.1, 0.5, 0.1, 0.2, 0.3};
  struct Case {
    int index;
    double value;
    double mu;
    int expected;
  };
  const Case cases[] = {{0, -1.0, kMuSun, 0}, {1, -0.01, kMuSun, 0}, {2, -0.01, kMuSun, 0},
                        {2, kPi, kMuSun, 1},  {0, 0.0, kMuSun, 1},   {0, kAU, 0.0, 0},
                        {0, NAN, kMuSun, 0},  {5, NAN, kMuSun, 0}};
  for (const Case& c : cases) {
    double coe[6], ee[6];
    std::memcpy(coe, good, sizeof coe);
    coe[c.index] = c.value;
    fill_sentinel(ee);
    int flag = -1;
    coe2ee(flag, ee, coe, c.mu);
    EXPECT_EQ(flag, c.expected) << c.index << " " << c.value;
    if (c.expected == 0) {
      EXPECT_EQ(ee[0], kSentinel);
    }
  }
  // Hyperbola beyond its asymptote: e cos f < -1.
  const double beyond[6] = {kAU, 2.0, 0.5, 0.1, 0.2, 150.0 * kDeg};
  double ee[6];
  int flag = -1;
  coe2ee(flag, ee, beyond, kMuSun);
  EXPECT_EQ(flag, 0);
}

TEST(Equinoctial, RvToEeAgreesWithTheClassicalPath) {
  std::mt19937_64 rng(31337);
  for (int n = 0; n < 5000; ++n) {
    double rv[6], ee[6], coe[6], ee_coe[6];
    astro_test::random_state(rng, rv);
    int flag = -1;
    rv2ee(flag, ee, rv, kMuSun);
    if (flag == 0) continue;
    rv2coe(flag, coe, rv, kMuSun);
    ASSERT_EQ(flag, 1);
    coe2ee(flag, ee_coe, coe, kMuSun);
    if (flag == 0 || coe[2] > 170.0 * kDeg || coe[1] > 20.0) continue;
    EXPECT_LE(astro_test::rel_err(ee[0], ee_coe[0]), 1e-10) << show(rv);
    for (int k = 1; k < 5; ++k) EXPECT_NEAR(ee[k], ee_coe[k], 1e-9) << k << " " << show(rv);
    EXPECT_LE(angle_diff(ee[5], ee_coe[5]), 1e-9) << show(rv);
    EXPECT_GE(ee[5], 0.0);
    EXPECT_LT(ee[5], kTwoPi);
    if (HasFailure()) return;
  }
}

TEST(Equinoctial, RetrogradeEquatorialWritesOnlyP) {
  const double mu = 398600.4418;
  const double rv[6] = {7000.0, 0.0, 0.0, 0.0, -7.5, 0.0};
  double ee[6];
  fill_sentinel(ee);
  int flag = -1;
  rv2ee(flag, ee, rv, mu);
  EXPECT_EQ(flag, 0);
  EXPECT_NEAR(ee[0], (7000.0 * 7.5) * (7000.0 * 7.5) / mu, 1e-9);
  for (int k = 1; k < 6; ++k) EXPECT_EQ(ee[k], kSentinel);

  fill_sentinel(ee);
  rv2ee(flag, ee, rv, 0.0);
  EXPECT_EQ(flag, 0);
  for (int k = 0; k < 6; ++k) EXPECT_EQ(ee[k], kSentinel);  // mu refused before p
}

TEST(Equinoctial, EeRefusals) {
  const double bad_p[6] = {0.0, 0.1, 0.1, 0.1, 0.1, 0.1};
  const double good[6] = {kAU, 0.1, 0.1, 0.1, 0.1, 0.1};
  double out[6];
  int flag = -1;
  fill_sentinel(out);
  ee2coe(flag, out, bad_p, kMuSun);
  EXPECT_EQ(flag, 0);
  ee2rv(flag, out, bad_p, kMuSun);
  EXPECT_EQ(flag, 0);
  ee2coe(flag, out, good, -1.0);
  EXPECT_EQ(flag, 0);
  ee2rv(flag, out, good, 0.0);
  EXPECT_EQ(flag, 0);
  for (int k = 0; k < 6; ++k) EXPECT_EQ(out[k], kSentinel);
}

TEST(Equinoctial, EeToCoeDegenerateBranches) {
  // Circular equatorial: the whole longitude becomes the true anomaly.
  const double circ[6] = {kAU, 0.0, 0.0, 0.0, 0.0, 7.0};
  double coe[6];
  int flag = -1;
  ee2coe(flag, coe, circ, kMuSun);
  ASSERT_EQ(flag, 1);
  EXPECT_EQ(coe[0], kAU);
  EXPECT_EQ(coe[2], 0.0);
  EXPECT_EQ(coe[3], 0.0);
  EXPECT_EQ(coe[4], 0.0);
  EXPECT_NEAR(coe[5], 7.0 - kTwoPi, 1e-15);
  // Circular inclined: f = L - RAAN, wrapped.
  const double inc[6] = {kAU, 0.0, 0.0, 0.0, 0.5, 0.2};
  ee2coe(flag, coe, inc, kMuSun);
  ASSERT_EQ(flag, 1);
  EXPECT_NEAR(coe[2], 2.0 * std::atan(0.5), 1e-15);
  EXPECT_NEAR(coe[3], kPi / 2.0, 1e-15);
  EXPECT_NEAR(coe[5], 0.2 - kPi / 2.0 + kTwoPi, 1e-15);
  // Parabola: first element p / 2.
  const double par[6] = {14000.0, 0.6, 0.8, 0.0, 0.0, 0.9};
  ee2coe(flag, coe, par, kMuSun);
  ASSERT_EQ(flag, 1);
  EXPECT_EQ(coe[1], 1.0);
  EXPECT_EQ(coe[0], 7000.0);
}

TEST(Equinoctial, OpenOrbitsComeBackBetweenTheAsymptotes) {
  // ee2coe wraps the anomaly to one positive turn; an open orbit then takes it back to
  // the branch before periapsis.
  for (double e : {1.0, 2.0}) {
    const double coe[6] = {kAU, e, 0.4, 0.5, 0.6, -100.0 * kDeg};
    double ee[6], back[6];
    int flag = -1;
    coe2ee(flag, ee, coe, kMuSun);
    ASSERT_EQ(flag, 1);
    ee2coe(flag, back, ee, kMuSun);
    ASSERT_EQ(flag, 1);
    EXPECT_NEAR(back[5], -100.0 * kDeg, 1e-12) << e;
    EXPECT_LE(astro_test::rel_err(back[0], kAU), 1e-12);
  }
}

TEST(NonSingular, RoundTripDescribesTheSameOrbit) {
  std::mt19937_64 rng(8);
  std::uniform_real_distribution<double> u(0.0, 1.0);
  for (int n = 0; n < 2000; ++n) {
    const double coe[6] = {kAU * (0.3 + u(rng)), 0.9 * u(rng),         kPi * u(rng),
                           20.0 * u(rng) - 10.0, 20.0 * u(rng) - 10.0, 20.0 * u(rng) - 10.0};
    double soe[6], back[6], rv0[6], rv1[6];
    coe2soe(coe, soe);
    soe2coe(soe, back);
    EXPECT_GT(back[3], -kTwoPi);
    EXPECT_LT(back[3], kTwoPi);
    EXPECT_GT(back[5], -kTwoPi);
    EXPECT_LT(back[5], kTwoPi);
    rv_of(coe, rv0);
    rv_of(back, rv1);
    EXPECT_LE(rv_err(rv0, rv1), 1e-10) << show(coe);
  }
}

TEST(NonSingular, AnglesAreOnlyReducedNeverWrapped) {
  // omega = 0 and u = -1: f stays -1, the node -1 stays -1.
  const double soe[6] = {kAU, -1.0, 0.5, 0.2, 0.0, -1.0};
  double coe[6];
  soe2coe(soe, coe);
  EXPECT_EQ(coe[0], kAU);
  EXPECT_NEAR(coe[1], 0.2, 1e-16);
  EXPECT_EQ(coe[3], -1.0);
  EXPECT_EQ(coe[4], 0.0);
  EXPECT_EQ(coe[5], -1.0);
  const double many[6] = {kAU, 3.0 * kTwoPi + 0.5, 0.5, 0.0, -0.1, -3.0 * kTwoPi - 0.25};
  soe2coe(many, coe);
  EXPECT_NEAR(coe[3], -0.25, 1e-13);
  EXPECT_NEAR(coe[4], -kPi / 2.0, 1e-15);
  EXPECT_NEAR(coe[5], std::fmod(3.0 * kTwoPi + 0.5 + kPi / 2.0, kTwoPi), 1e-13);
}

}  // namespace
