// Mean and osculating elements under J2: the first-order map against a numerical
// integration of the J2 equations of motion, its inverse, refusals and the solver.
#include "orbit/orbit_utils.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "astro/anomaly.h"
#include "astro/elements.h"
#include "support/two_body.h"

namespace kavren::test {
namespace {

constexpr double kMuEarth = 398600.4418;  // km^3/s^2
constexpr double kJ2Earth = 1.08262668e-3;
constexpr double kReqEarth = 6378.137;  // km
const double kEarth[3] = {kMuEarth, kJ2Earth, kReqEarth};

// Osculating elements with the mean anomaly (a, e, i, RAAN, argp, M) from and to a state,
// through the toolkit's conversions (checked on their own against integration).
void state_of(const double* el, double* rv) {
  int flag = -1;
  const double coe[6] = {el[0], el[1], el[2],
                         el[3], el[4], E2f(flag, M2E(flag, el[5], el[1], 100, 1e-15), el[1])};
  coe2rv(flag, rv, coe, kMuEarth);
}
void elements_of(const double* rv, double* el) {
  int flag = -1;
  rv2coe(flag, el, rv, kMuEarth);
  el[5] = E2M(flag, f2E(flag, el[5], el[1]), el[1]);
}

// Integrate the J2 equations of motion from an osculating set over two revolutions: the
// osculating elements along the way equal M2O2 of the mean elements advanced at the
// first-order secular rates, up to second-order terms. Without the short-period terms the
// mismatch is the full short-period amplitude.
struct Mismatch {
  double with_terms[6] = {};     // largest |integrated - M2O2(mean(t))|, a relative to a
  double without_terms[6] = {};  // largest |integrated - mean(t)|
};

Mismatch integrate_against_model(const double* osc0, double J2) {
  const double para[3] = {kMuEarth, J2, kReqEarth};
  double mean0[6];
  int flag = 0;
  O2M2(flag, mean0, osc0, para, 1e-14, 50);
  EXPECT_EQ(flag, 1);
  const double a = mean0[0], e = mean0[1], c = std::cos(mean0[2]);
  const double eta = std::sqrt(1.0 - e * e);
  const double n = std::sqrt(kMuEarth / (a * a * a));
  const double kappa = J2 * kReqEarth * kReqEarth / (a * a * eta * eta * eta * eta);
  const double rate[6] = {0.0,
                          0.0,
                          0.0,
                          -1.5 * n * kappa * c,
                          0.75 * n * kappa * (5.0 * c * c - 1.0),
                          n * (1.0 + 0.75 * kappa * eta * (3.0 * c * c - 1.0))};
  double y[6];
  state_of(osc0, y);
  const double dt = 2.0 * kTwoPi / n / 40;
  Mismatch m;
  for (int s = 1; s <= 40; ++s) {
    rk4<6>(Gravity{kMuEarth, J2, kReqEarth}, 0.0, dt, 30, y);
    double numeric[6], mean_t[6], model[6];
    elements_of(y, numeric);
    for (int k = 0; k < 6; ++k) mean_t[k] = mean0[k] + rate[k] * s * dt;
    M2O2(flag, model, mean_t, para);
    EXPECT_EQ(flag, 1);
    for (int k = 0; k < 6; ++k) {
      const double scale = k == 0 ? 1.0 / a : 1.0;
      const double dm =
          k >= 3 ? std::remainder(model[k] - numeric[k], kTwoPi) : model[k] - numeric[k];
      const double dp =
          k >= 3 ? std::remainder(mean_t[k] - numeric[k], kTwoPi) : mean_t[k] - numeric[k];
      m.with_terms[k] = std::fmax(m.with_terms[k], std::fabs(dm) * scale);
      m.without_terms[k] = std::fmax(m.without_terms[k], std::fabs(dp) * scale);
    }
  }
  return m;
}

// Short-period amplitudes are of order J2 (1e-3); what the model leaves is of order J2^2
// (divided by e^2 in argp and M): halving J2 quarters it, and only halves the amplitude.
TEST(M2O2, MatchesNumericallyIntegratedJ2MotionToSecondOrder) {
  const double starts[][6] = {
      {7000.0, 0.05, 50.0 * kDeg, 30.0 * kDeg, 60.0 * kDeg, 10.0 * kDeg},
      {9000.0, 0.2, 110.0 * kDeg, 250.0 * kDeg, 200.0 * kDeg, 300.0 * kDeg}};
  for (const auto& osc0 : starts) {
    const Mismatch m = integrate_against_model(osc0, kJ2Earth);
    for (int k = 0; k < 6; ++k) {
      EXPECT_GT(m.without_terms[k], 1e-4) << "element " << k;
      EXPECT_LT(m.with_terms[k], 0.03 * m.without_terms[k]) << "element " << k;
    }
  }
  const Mismatch full = integrate_against_model(starts[1], kJ2Earth);
  const Mismatch half = integrate_against_model(starts[1], 0.5 * kJ2Earth);
  for (int k = 0; k < 6; ++k) {
    EXPECT_NEAR(full.without_terms[k] / half.without_terms[k], 2.0, 0.1) << "element " << k;
    // Every first-order term is exact: a coefficient off by a part in a thousand leaves a
    // first-order remainder that pulls this ratio below 3.96.
    EXPECT_NEAR(full.with_terms[k] / half.with_terms[k], 4.0, 0.035) << "element " << k;
  }
}

// Low and high eccentricity, prograde, polar and retrograde, near the critical
// inclination, anomalies in every quadrant and outside the first turn.
TEST(O2M2, RecoversTheMeanSetWithAVanishingResidual) {
  const double mean_sets[][6] = {
      {7000.0, 0.05, 50.0 * kDeg, 30.0 * kDeg, 60.0 * kDeg, 10.0 * kDeg},
      {7200.0, 0.01, 98.0 * kDeg, 200.0 * kDeg, 280.0 * kDeg, 250.0 * kDeg},
      {26560.0, 0.7, 63.4 * kDeg, 10.0 * kDeg, 270.0 * kDeg, 179.0 * kDeg},
      {8000.0, 0.2, 120.0 * kDeg, 300.0 * kDeg, 45.0 * kDeg, -100.0 * kDeg},
      {42164.0, 0.3, 5.0 * kDeg, 80.0 * kDeg, 150.0 * kDeg, 7.0 * kPi + 0.3}};
  for (const auto& mean : mean_sets) {
    // One more element than the set: the conversion writes six, no seventh.
    double osc[6], back[7] = {0, 0, 0, 0, 0, 0, -1.0}, res[6],
                   para[9] = {kMuEarth, kJ2Earth, kReqEarth};
    int flag = 0;
    M2O2(flag, osc, mean, kEarth);
    ASSERT_EQ(flag, 1);
    O2M2(flag, back, osc, kEarth, 1e-13, 50);
    ASSERT_EQ(flag, 1);
    for (int k = 0; k < 6; ++k) para[3 + k] = osc[k];
    EXPECT_EQ(back[6], -1.0);
    myfun(flag, res, back, para);
    ASSERT_EQ(flag, 1);
    for (int k = 0; k < 6; ++k) {
      const double scale = k == 0 ? mean[0] : 1.0;
      EXPECT_NEAR(back[k], mean[k], 1e-10 * scale) << "element " << k;
      EXPECT_NEAR(res[k], 0.0, 1e-10 * scale) << "element " << k;
    }
  }
}

TEST(M2O2, RefusesInputsOutsideItsRange) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const double good[6] = {7000.0, 0.05, 0.5, 0.1, 0.2, 0.3};
  const double bad[][2] = {{1, 0.0}, {1, 1.0},      {1, -0.1}, {0, -7000.0},
                           {2, nan}, {5, INFINITY}, {6, 0.0},  {7, nan}};  // 6, 7: mu and J2
  for (const auto& change : bad) {
    double mean[6], para[3] = {kMuEarth, kJ2Earth, kReqEarth};
    std::copy(good, good + 6, mean);
    const int at = static_cast<int>(change[0]);
    (at < 6 ? mean[at] : para[at - 6]) = change[1];
    double osc[6] = {1, 2, 3, 4, 5, 6};
    int flag = 1;
    M2O2(flag, osc, mean, para);
    EXPECT_EQ(flag, 0) << at;
    for (int k = 0; k < 6; ++k) EXPECT_EQ(osc[k], k + 1.0);
  }
}

// x + 0.25 sin x - target, a contraction for the fixed-point step.
void scalar_residual(int& flag, double* res, const double* x, const double* para) {
  res[0] = x[0] + 0.25 * std::sin(x[0]) - para[0];
  flag = 1;
}
// The same, component by component, in the largest dimension the solver takes.
void residual16(int& flag, double* res, const double* x, const double* para) {
  for (int k = 0; k < 16; ++k) res[k] = x[k] + 0.25 * std::sin(x[k]) - para[k];
  flag = 1;
}
void failing_residual(int& flag, double*, const double*, const double*) {
  flag = 0;
}

TEST(FixedPointSolve, FindsTheRootAndReportsFailures) {
  const double target[1] = {2.0}, tol[1] = {1e-15};
  double x[1] = {0.0};
  int flag = 0;
  FixedPointSolve(flag, x, scalar_residual, target, 1, tol, 200);
  ASSERT_EQ(flag, 1);
  EXPECT_NEAR(x[0] + 0.25 * std::sin(x[0]), 2.0, 4e-16);
  double targets[16], tols[16], xs[16] = {};
  for (int k = 0; k < 16; ++k) {
    targets[k] = 0.1 * k;
    tols[k] = 1e-15;
  }
  FixedPointSolve(flag, xs, residual16, targets, 16, tols, 200);
  ASSERT_EQ(flag, 1);
  EXPECT_NEAR(xs[15] + 0.25 * std::sin(xs[15]), 1.5, 4e-16);
  double y[1] = {5.0};
  FixedPointSolve(flag, y, failing_residual, target, 1, tol, 200);
  EXPECT_EQ(flag, 0);
  FixedPointSolve(flag = 1, y, scalar_residual, target, 0, tol, 200);
  EXPECT_EQ(flag, 0);
  FixedPointSolve(flag = 1, y, scalar_residual, target, 17, tol, 200);
  EXPECT_EQ(flag, 0);
  EXPECT_EQ(y[0], 5.0);
}

TEST(DynFun, TwoBodyAcceleration) {
  const double mu[1] = {4.0};
  const double y[6] = {0.0, 3.0, 4.0, -1.0, 0.5, 2.0};
  double dy[6], expected[6];
  DynFun(0.0, y, dy, mu);
  Gravity{4.0}(0.0, y, expected);
  for (int k = 0; k < 6; ++k) EXPECT_DOUBLE_EQ(dy[k], expected[k]) << k;
}

}  // namespace
}  // namespace kavren::test
