#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "orbit/orbit_test_support.h"
#include "orbit/orbit_utils.h"

namespace {

using orbit_test::kJ2Earth;
using orbit_test::kMuEarth;
using orbit_test::kPi;
using orbit_test::kReqEarth;
using orbit_test::wrap;

const double kDeg = kPi / 180.0;
const double kEarth[3] = {kMuEarth, kJ2Earth, kReqEarth};

// Mean sets across the range the map is meant for: low and high eccentricity,
// prograde, polar and retrograde, near the critical inclination, anomalies in every
// quadrant and outside the first turn.
const double kMeanSets[][6] = {
    {7000.0, 0.05, 50.0 * kDeg, 30.0 * kDeg, 60.0 * kDeg, 10.0 * kDeg},
    {7200.0, 0.01, 98.0 * kDeg, 200.0 * kDeg, 280.0 * kDeg, 250.0 * kDeg},
    {26560.0, 0.7, 63.4 * kDeg, 10.0 * kDeg, 270.0 * kDeg, 179.0 * kDeg},
    {8000.0, 0.2, 120.0 * kDeg, 300.0 * kDeg, 45.0 * kDeg, -100.0 * kDeg},
    {42164.0, 0.3, 5.0 * kDeg, 80.0 * kDeg, 150.0 * kDeg, 7.0 * kPi + 0.3},
};

// Physical check: integrate the J2 equations of motion from an osculating state over two
// revolutions; the osculating elements along the way must equal M2O2 of the mean
// elements advanced at the first-order secular rates, up to second-order terms. Without
// the short-period terms the mismatch is the full short-period amplitude.
struct Mismatch {
  double with_terms[6];     // largest |integrated - M2O2(mean(t))|, a relative to a
  double without_terms[6];  // largest |integrated - mean(t)|
};

Mismatch integrate_against_model(const double* osc0, double J2) {
  const double para[3] = {kMuEarth, J2, kReqEarth};
  double mean0[6];
  int flag = 0;
  O2M2(flag, mean0, osc0, para, 1e-14, 50);
  EXPECT_EQ(flag, 1);

  const double a = mean0[0], e = mean0[1], c = std::cos(mean0[2]);
  const double eta = std::sqrt(1.0 - e * e);
  const double p = a * eta * eta;
  const double n = std::sqrt(kMuEarth / (a * a * a));
  const double kappa = J2 * kReqEarth * kReqEarth / (p * p);
  const double rate[6] = {0.0,
                          0.0,
                          0.0,
                          -1.5 * n * kappa * c,
                          0.75 * n * kappa * (5.0 * c * c - 1.0),
                          n * (1.0 + 0.75 * kappa * eta * (3.0 * c * c - 1.0))};

  double y[6];
  orbit_test::elements_to_state(y, osc0, kMuEarth);
  double t = 0.0;
  const double period = 2.0 * kPi / n;
  const int samples = 40;
  const int steps_per_sample = 30;
  const double h = 2.0 * period / (samples * steps_per_sample);
  Mismatch m = {{0, 0, 0, 0, 0, 0}, {0, 0, 0, 0, 0, 0}};
  for (int s = 0; s < samples; ++s) {
    orbit_test::rk4_steps(orbit_test::j2_dynamics, y, para, t, h, steps_per_sample);
    double numeric[6];
    orbit_test::state_to_elements(numeric, y, kMuEarth);
    double mean_t[6];
    for (int k = 0; k < 6; ++k) mean_t[k] = mean0[k] + rate[k] * t;
    double model[6];
    M2O2(flag, model, mean_t, para);
    EXPECT_EQ(flag, 1);
    for (int k = 0; k < 6; ++k) {
      const double scale = (k == 0) ? 1.0 / a : 1.0;
      const double dm = (k >= 3) ? wrap(model[k] - numeric[k]) : model[k] - numeric[k];
      const double dp = (k >= 3) ? wrap(mean_t[k] - numeric[k]) : mean_t[k] - numeric[k];
      m.with_terms[k] = std::fmax(m.with_terms[k], std::fabs(dm) * scale);
      m.without_terms[k] = std::fmax(m.without_terms[k], std::fabs(dp) * scale);
    }
  }
  return m;
}

const double kIntegratedStarts[][6] = {
    {7000.0, 0.05, 50.0 * kDeg, 30.0 * kDeg, 60.0 * kDeg, 10.0 * kDeg},
    {9000.0, 0.2, 110.0 * kDeg, 250.0 * kDeg, 200.0 * kDeg, 300.0 * kDeg},
};

TEST(M2O2, MatchesNumericallyIntegratedJ2Motion) {
  for (const auto& osc0 : kIntegratedStarts) {
    const Mismatch m = integrate_against_model(osc0, kJ2Earth);
    for (int k = 0; k < 6; ++k) {
      // Short-period amplitudes are of order J2 (1e-3); what is left is of order J2^2
      // (divided by e^2 in argp and M).
      EXPECT_GT(m.without_terms[k], 1e-4) << "element " << k;
      EXPECT_LT(m.with_terms[k], 0.03 * m.without_terms[k]) << "element " << k;
    }
  }
}

// What the model leaves out is second order: halving J2 quarters it, while the
// short-period amplitude itself only halves.
TEST(M2O2, WhatRemainsIsSecondOrderInJ2) {
  const double* osc0 = kIntegratedStarts[1];
  const Mismatch full = integrate_against_model(osc0, kJ2Earth);
  const Mismatch half = integrate_against_model(osc0, 0.5 * kJ2Earth);
  for (int k = 0; k < 6; ++k) {
    EXPECT_NEAR(full.without_terms[k] / half.without_terms[k], 2.0, 0.1) << "element " << k;
    EXPECT_NEAR(full.with_terms[k] / half.with_terms[k], 4.0, 0.6) << "element " << k;
  }
}

TEST(O2M2, RecoversTheMeanSet) {
  for (const auto& mean : kMeanSets) {
    double osc[6];
    int flag = 0;
    M2O2(flag, osc, mean, kEarth);
    ASSERT_EQ(flag, 1);
    double back[6];
    O2M2(flag, back, osc, kEarth, 1e-13, 50);
    ASSERT_EQ(flag, 1);
    EXPECT_NEAR(back[0], mean[0], 1e-10 * mean[0]);
    for (int k = 1; k < 6; ++k) EXPECT_NEAR(back[k], mean[k], 1e-10) << "element " << k;

    // The residual of the recovered set vanishes.
    double para[9] = {kMuEarth, kJ2Earth, kReqEarth};
    for (int k = 0; k < 6; ++k) para[3 + k] = osc[k];
    double res[6];
    myfun(flag, res, back, para);
    ASSERT_EQ(flag, 1);
    EXPECT_NEAR(res[0], 0.0, 1e-10 * mean[0]);
    for (int k = 1; k < 6; ++k) EXPECT_NEAR(res[k], 0.0, 1e-10) << "element " << k;
  }
}

TEST(M2O2, RefusesInputsOutsideItsRange) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const double bad_sets[][6] = {
      {7000.0, 0.0, 0.5, 0.1, 0.2, 0.3},  {7000.0, 1.0, 0.5, 0.1, 0.2, 0.3},
      {7000.0, -0.1, 0.5, 0.1, 0.2, 0.3}, {-7000.0, 0.1, 0.5, 0.1, 0.2, 0.3},
      {7000.0, 0.1, nan, 0.1, 0.2, 0.3},  {7000.0, 0.1, 0.5, 0.1, 0.2, INFINITY},
  };
  for (const auto& mean : bad_sets) {
    double osc[6] = {1, 2, 3, 4, 5, 6};
    int flag = 1;
    M2O2(flag, osc, mean, kEarth);
    EXPECT_EQ(flag, 0);
    for (int k = 0; k < 6; ++k) EXPECT_EQ(osc[k], k + 1.0);
  }
  const double bad_para[][3] = {{0.0, kJ2Earth, kReqEarth}, {kMuEarth, nan, kReqEarth}};
  for (const auto& para : bad_para) {
    double osc[6] = {1, 2, 3, 4, 5, 6};
    int flag = 1;
    M2O2(flag, osc, kMeanSets[0], para);
    EXPECT_EQ(flag, 0);
    for (int k = 0; k < 6; ++k) EXPECT_EQ(osc[k], k + 1.0);
  }
}

// x + 0.25 sin x - target, a contraction for the fixed-point step.
void scalar_residual(int& flag, double* res, const double* x, const double* para) {
  res[0] = x[0] + 0.25 * std::sin(x[0]) - para[0];
  flag = 1;
}

void failing_residual(int& flag, double* /*res*/, const double* /*x*/, const double* /*para*/) {
  flag = 0;
}

TEST(FixedPointSolve, FindsTheRootAndReportsFailures) {
  const double target[1] = {2.0};
  const double tol[1] = {1e-15};
  double x[1] = {0.0};
  int flag = 0;
  FixedPointSolve(flag, x, scalar_residual, target, 1, tol, 200);
  ASSERT_EQ(flag, 1);
  EXPECT_NEAR(x[0] + 0.25 * std::sin(x[0]), 2.0, 4e-16);

  double y[1] = {5.0};
  FixedPointSolve(flag, y, failing_residual, target, 1, tol, 200);
  EXPECT_EQ(flag, 0);
  EXPECT_EQ(y[0], 5.0);
  FixedPointSolve(flag = 1, y, scalar_residual, target, 0, tol, 200);
  EXPECT_EQ(flag, 0);
  FixedPointSolve(flag = 1, y, scalar_residual, target, 17, tol, 200);
  EXPECT_EQ(flag, 0);
  EXPECT_EQ(y[0], 5.0);
}

TEST(DynFun, TwoBodyAccelerationHandComputed) {
  const double mu[1] = {4.0};
  const double y[6] = {0.0, 3.0, 4.0, -1.0, 0.5, 2.0};  // r = 5
  double dy[6];
  DynFun(0.0, y, dy, mu);
  EXPECT_EQ(dy[0], -1.0);
  EXPECT_EQ(dy[1], 0.5);
  EXPECT_EQ(dy[2], 2.0);
  EXPECT_EQ(dy[3], 0.0);
  EXPECT_DOUBLE_EQ(dy[4], -4.0 * 3.0 / 125.0);
  EXPECT_DOUBLE_EQ(dy[5], -4.0 * 4.0 / 125.0);
}

}  // namespace
