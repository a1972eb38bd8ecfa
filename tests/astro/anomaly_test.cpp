// Anomalies: Kepler's equation solved over seeded anomalies and eccentricities, the chain
// f -> E -> M -> E -> f against the conic's geometry, and the refusals.
#include "astro/anomaly.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <random>

#include "support/two_body.h"

namespace kavren::test {
namespace {

// The returned anomaly satisfies Kepler's equation, whatever the number of turns.
TEST(KeplerEquation, ResidualsOverSeededAnomaliesAndEccentricities) {
  std::mt19937_64 rng(20240601);
  std::uniform_real_distribution<double> u(0.0, 1.0);
  for (int n = 0; n < 40000; ++n) {
    const bool elliptic = n % 2 == 0;
    const double M = elliptic ? 4.0 * kPi * (2.0 * u(rng) - 1.0) : 60.0 * u(rng) - 30.0;
    const double e = elliptic ? (n < 200 ? 0.0 : 0.995 * u(rng)) : 1.001 + 7.0 * u(rng);
    int flag = -1;
    const double E = M2E(flag, M, e, 100, 1.0e-14);
    ASSERT_EQ(flag, 1) << "M=" << M << " e=" << e;
    if (elliptic) {
      ASSERT_LE(std::fabs(E - e * std::sin(E) - M), 1.0e-14) << "M=" << M << " e=" << e;
      ASSERT_LE(std::fabs(E - M), e + 1.0e-12);  // the same turn as M
    } else {
      ASSERT_LE(std::fabs(e * std::sinh(E) - E - M), 1.0e-14 * std::max(1.0, std::fabs(M)))
          << "M=" << M << " e=" << e;
    }
  }
}

// r = a (1 - e cos E) = p / (1 + e cos f), and the chain back to f closes, across turns.
TEST(Anomalies, ChainAgreesWithTheConicGeometry) {
  for (double e : {0.0, 0.3, 0.8, 0.999, 1.8}) {
    for (double f = -15.0; f <= 15.0; f += 0.23) {
      const double lim = kPi - std::acos(1.0 / e) - 1e-3;
      if (e > 1.0 && std::fabs(f) > lim) continue;
      int flag = -1;
      const double E = f2E(flag, f, e);
      ASSERT_EQ(flag, 1);
      const double r = e < 1.0 ? 1.0 - e * std::cos(E) : e * std::cosh(E) - 1.0;
      EXPECT_NEAR(r, std::fabs(1.0 - e * e) / (1.0 + e * std::cos(f)), 1e-12 * std::max(1.0, r));
      const double M = E2M(flag, E, e);
      ASSERT_EQ(flag, 1);
      const double E_back = M2E(flag, M, e, 100, 1e-14);
      const double f_back = E2f(flag, E_back, e);
      ASSERT_EQ(flag, 1);
      EXPECT_NEAR(f_back, f, 1.0e-10 * std::max(1.0, std::fabs(f))) << "e=" << e << " f=" << f;
    }
  }
}

TEST(Anomalies, RefusalsReturnTheirArgumentAndTheAsymptoteIsInclusive) {
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
  // A negative eccentricity is refused, a parabola passes the anomaly through.
  for (double e : {-0.1, 1.0}) {
    for (auto convert : {E2f, E2M, f2E}) {
      for (double x : {0.7, -12.0, 100.0}) {
        int flag = -1;
        EXPECT_EQ(convert(flag, x, e), x);
        EXPECT_EQ(flag, e > 0.0 ? 1 : 0) << e << " " << x;
      }
    }
  }
  // e = 2: the asymptotes lie at +-120 degrees; beyond them f is refused.
  int flag = -1;
  const double H = f2E(flag, 120.0 * kDeg, 2.0);
  EXPECT_EQ(flag, 1);
  EXPECT_TRUE(!std::isfinite(H) || H > 30.0) << H;
  const double H_neg = f2E(flag, -120.0 * kDeg, 2.0);
  EXPECT_EQ(flag, 1);
  EXPECT_TRUE(!std::isfinite(H_neg) || H_neg < -30.0) << H_neg;
  for (double f : {121.0 * kDeg, -121.0 * kDeg, kPi, 3.0 * kPi}) {
    EXPECT_EQ(f2E(flag, f, 2.0), f);
    EXPECT_EQ(flag, 0) << f;
  }
  // One period of a 1 AU circle about the Sun is 2 pi sqrt(a^3 / mu).
  const double T = kTwoPi * std::sqrt(kAU * kAU * kAU / kMuSun);
  EXPECT_NEAR(M0dt2Mt(0.5, kMuSun, kAU, T), 0.5 + kTwoPi, 1e-12);
  EXPECT_EQ(M0dt2Mt(0.5, kMuSun, kAU, 0.0), 0.5);
}

}  // namespace
}  // namespace kavren::test
