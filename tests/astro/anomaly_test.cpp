#include "astro/anomaly.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "astro_test_util.h"

using astro_test::kDeg;
using astro_test::kPi;
using astro_test::kTwoPi;

namespace {

// Kepler's equation must hold for the returned anomaly, whatever the number of turns.
TEST(KeplerEquation, EllipticResidualsOverManyAnomaliesAndEccentricities) {
  std::mt19937_64 rng(20240601);
  std::uniform_real_distribution<double> M_dist(-4.0 * kPi, 4.0 * kPi);
  std::uniform_real_distribution<double> e_dist(0.0, 0.995);
  for (int n = 0; n < 20000; ++n) {
    const double M = M_dist(rng);
    const double e = n < 100 ? 0.0 : e_dist(rng);
    int flag = -1;
    const double E = M2E(flag, M, e, 100, 1.0e-14);
    ASSERT_EQ(flag, 1) << "M=" << M << " e=" << e;
    ASSERT_LE(std::fabs(E - e * std::sin(E) - M), 1.0e-14) << "M=" << M << " e=" << e;
    // The same turn as M: E and M differ by at most e radians.
    ASSERT_LE(std::fabs(E - M), e + 1.0e-12);
  }
}

TEST(KeplerEquation, HyperbolicResidualsOverManyAnomaliesAndEccentricities) {
  std::mt19937_64 rng(777);
  std::uniform_real_distribution<double> M_dist(-30.0, 30.0);
  std::uniform_real_distribution<double> e_dist(1.001, 8.0);
  for (int n = 0; n < 20000; ++n) {
    const double M = M_dist(rng);
    const double e = e_dist(rng);
    int flag = -1;
    const double H = M2E(flag, M, e, 100, 1.0e-14);
    ASSERT_EQ(flag, 1) << "M=" << M << " e=" << e;
    ASSERT_LE(std::fabs(e * std::sinh(H) - H - M), 1.0e-14 * std::max(1.0, std::fabs(M)))
        << "M=" << M << " e=" << e;
  }
}

TEST(KeplerEquation, RefusesInvalidArgumentsReturningM) {
  struct Case {
    double e;
    int max_iter;
    double epsilon;
  };
  for (const Case& c : {Case{0.5, 0, 1e-14}, Case{0.5, -3, 1e-14}, Case{0.5, 100, 0.0},
                        Case{0.5, 100, -1e-14}, Case{-0.1, 100, 1e-14}, Case{2.0, 0, 1e-14}}) {
    int flag = -1;
    EXPECT_EQ(M2E(flag, 1.234, c.e, c.max_iter, c.epsilon), 1.234);
    EXPECT_EQ(flag, 0) << "e=" << c.e << " MaxIter=" << c.max_iter << " eps=" << c.epsilon;
  }
}

TEST(Anomalies, TrueAndEccentricAreInverseAcrossTurns) {
  for (double e : {0.0, 0.3, 0.8, 0.999}) {
    for (double f = -15.0; f <= 15.0; f += 0.23) {
      int flag = -1;
      const double E = f2E(flag, f, e);
      ASSERT_EQ(flag, 1);
      const double back = E2f(flag, E, e);
      ASSERT_EQ(flag, 1);
      EXPECT_NEAR(back, f, 1.0e-10 * std::max(1.0, std::fabs(f))) << "e=" << e << " f=" << f;
    }
  }
}

TEST(Anomalies, EccentricAnomalyMatchesTheConicGeometry) {
  // Independent relation: r = a (1 - e cos E) = p / (1 + e cos f).
  const double e = 0.6;
  for (double f = -3.0; f <= 3.0; f += 0.1) {
    int flag = -1;
    const double E = f2E(flag, f, e);
    EXPECT_NEAR(1.0 - e * std::cos(E), (1.0 - e * e) / (1.0 + e * std::cos(f)), 1e-14);
    const double eh = 1.8;
    if (std::fabs(f) < kPi - std::acos(1.0 / eh) - 1e-3) {
      const double H = f2E(flag, f, eh);
      ASSERT_EQ(flag, 1);
      EXPECT_NEAR(eh * std::cosh(H) - 1.0, (eh * eh - 1.0) / (1.0 + eh * std::cos(f)),
                  1e-12 * (eh * std::cosh(H)));
      EXPECT_NEAR(E2f(flag, H, eh), f, 1e-12);
    }
  }
}

TEST(Anomalies, AsymptoteBoundIsInclusive) {
  // e = 2: the asymptotes lie at +-120 degrees.
  int flag = -1;
  const double at = 120.0 * kDeg;
  const double H = f2E(flag, at, 2.0);
  EXPECT_EQ(flag, 1);
  EXPECT_TRUE(!std::isfinite(H) || H > 30.0) << H;  // t = 1 up to rounding
  const double H_neg = f2E(flag, -at, 2.0);
  EXPECT_EQ(flag, 1);
  EXPECT_TRUE(!std::isfinite(H_neg) || H_neg < -30.0) << H_neg;
  for (double f : {121.0 * kDeg, -121.0 * kDeg, kPi, 3.0 * kPi}) {
    flag = -1;
    EXPECT_EQ(f2E(flag, f, 2.0), f);
    EXPECT_EQ(flag, 0) << f;
  }
}

TEST(Anomalies, NegativeEccentricityRefusedParabolaPassedThrough) {
  int flag = -1;
  EXPECT_EQ(E2f(flag, 0.7, -0.1), 0.7);
  EXPECT_EQ(flag, 0);
  EXPECT_EQ(E2M(flag, 0.7, -0.1), 0.7);
  EXPECT_EQ(flag, 0);
  EXPECT_EQ(f2E(flag, 0.7, -0.1), 0.7);
  EXPECT_EQ(flag, 0);
  for (double x : {0.7, -12.0, 100.0}) {
    flag = -1;
    EXPECT_EQ(E2f(flag, x, 1.0), x);
    EXPECT_EQ(flag, 1);
    flag = -1;
    EXPECT_EQ(E2M(flag, x, 1.0), x);
    EXPECT_EQ(flag, 1);
    flag = -1;
    EXPECT_EQ(f2E(flag, x, 1.0), x);
    EXPECT_EQ(flag, 1);
  }
}

TEST(Anomalies, MeanMotionAdvance) {
  // One period of a 1 AU circle about the Sun is 2 pi sqrt(a^3 / mu).
  const double a = astro_test::kAU;
  const double T = kTwoPi * std::sqrt(a * a * a / astro_test::kMuSun);
  EXPECT_NEAR(M0dt2Mt(0.5, astro_test::kMuSun, a, T), 0.5 + kTwoPi, 1e-12);
  EXPECT_EQ(M0dt2Mt(0.5, astro_test::kMuSun, a, 0.0), 0.5);
}

}  // namespace
