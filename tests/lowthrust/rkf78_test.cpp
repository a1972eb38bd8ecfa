// The Fehlberg 7(8) integrator: tableau properties, agreement with Kepler motion, and the
// status flags of its driver.
#include "lowthrust/rkf78.h"

#include "astro/constants.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <string>
#include <vector>

#include "kepler_reference.h"
#include "lowthrust/dynamics.h"

namespace {

// --- Tableau -------------------------------------------------------------------------

TEST(Fehlberg78Tableau, CouplingRowsSumToTheirNodes) {
  for (int j = 0; j < 13; ++j) {
    long double sum = 0.0L;
    for (int l = 0; l < 12; ++l) {
      if (l >= j) {
        EXPECT_EQ(RK::RKFb[j][l], 0.0) << "row " << j << " entry " << l;
      }
      sum += RK::RKFb[j][l];
    }
    EXPECT_NEAR(static_cast<double>(sum), RK::RKFa[j], 1e-14) << "row " << j;
  }
}

TEST(Fehlberg78Tableau, QuadratureConditionsHoldUpToEighthOrder) {
  long double total = 0.0L;
  for (double c : RK::RKFc) total += c;
  EXPECT_NEAR(static_cast<double>(total), 1.0, 1e-15);
  for (int k = 1; k <= 7; ++k) {
    long double sum = 0.0L;
    for (int j = 0; j < 13; ++j) sum += RK::RKFc[j] * std::pow(static_cast<long double>(RK::RKFa[j]), k);
    EXPECT_NEAR(static_cast<double>(sum), 1.0 / (k + 1), 1e-14) << "k = " << k;
  }
}

// sum_j c_j sum_l beta_jl alpha_l^k = 1 / ((k+1)(k+2)): catches a wrong coupling entry
// that the row sums alone would not see.
TEST(Fehlberg78Tableau, CouplingConditionsHold) {
  for (int k = 0; k <= 6; ++k) {
    long double sum = 0.0L;
    for (int j = 0; j < 13; ++j) {
      long double inner = 0.0L;
      for (int l = 0; l < j; ++l) inner += RK::RKFb[j][l] * std::pow(static_cast<long double>(RK::RKFa[l]), k);
      sum += RK::RKFc[j] * inner;
    }
    EXPECT_NEAR(static_cast<double>(sum), 1.0 / ((k + 1) * (k + 2)), 1e-14) << "k = " << k;
  }
}

TEST(Fehlberg78Tableau, ErrorEstimateIsTheDifferenceOfTheTwoWeightSets) {
  // Seventh-order weights: 41/840 at stages 0 and 10 instead of 11 and 12.
  EXPECT_EQ(RK::kRKF78ErrorWeight, 41.0 / 840.0);
  EXPECT_EQ(RK::RKFc[11], 41.0 / 840.0);
  EXPECT_EQ(RK::RKFc[12], 41.0 / 840.0);
  EXPECT_EQ(RK::RKFc[0], 0.0);
  EXPECT_EQ(RK::RKFc[10], 0.0);
  std::vector<double> K(13 * 2, 0.0);
  K[0 * 2 + 1] = 3.0;
  K[10 * 2 + 1] = 2.0;
  K[11 * 2 + 1] = 1.0;
  K[12 * 2 + 1] = 0.5;
  EXPECT_EQ(RK::RKF78ErrorTerm(1, 2, K.data()), 41.0 / 840.0 * 3.5);
  EXPECT_EQ(RK::RKF78ErrorTerm(0, 2, K.data()), 0.0);
  K[5 * 2 + 1] = INFINITY;  // a zero-weight stage still poisons the estimate
  EXPECT_TRUE(std::isnan(RK::RKF78ErrorTerm(1, 2, K.data())));
}

TEST(RKUtilities, FollowTheirComparisonRules) {
  EXPECT_EQ(RK::Max(1.0, 2.0), 2.0);
  EXPECT_EQ(RK::Min(1.0, 2.0), 1.0);
  EXPECT_TRUE(std::isnan(RK::Max(NAN, 2.0)));
  EXPECT_EQ(RK::Max(0.0, NAN), 0.0);                          // a NaN ratio is dropped
  EXPECT_EQ(RK::CopySign(3.0, -1.0), -3.0);
  EXPECT_EQ(RK::CopySign(-3.0, 1.0), 3.0);
  EXPECT_EQ(RK::CopySign(-3.0, -1.0), -3.0);
  EXPECT_EQ(RK::CopySign(3, -1), -3);
  EXPECT_EQ(RK::CopySign(-3, 0), 3);
  EXPECT_EQ(RK::CopySign(-2147483647 - 1, 1), 2147483647);
  const double a[] = {3.0, -1.0, 7.0, 2.0};
  EXPECT_EQ(RK::ArrayMax(a, 4), 7.0);
  EXPECT_EQ(RK::ArrayMin(a, 4), -1.0);
  EXPECT_EQ(RK::ArrayMin(a, 0), INFINITY);
  EXPECT_EQ(RK::ArrayMax(a, 0), -INFINITY);
}

// --- Kepler motion -----------------------------------------------------------------------

using kavren::test::ellipse_state;
using kavren::test::kepler;

const double kAbsTol[7] = {1e-10, 1e-10, 1e-10, 1e-12, 1e-12, 1e-12, 1e-08};

// A year of coasting, against Kepler, at a given accuracy request; returns the position
// and velocity errors in km and km/s.
void coast_a_year(double relTol, const double* absTol, double* dr_km, double* dv_kms) {
  double y[7];
  ellipse_state(y);
  double rv0[6];
  for (int i = 0; i < 6; ++i) rv0[i] = y[i];
  const double para[1] = {0.0};
  double work[14 * 7];
  double t = 0.5;
  const double tout = 0.5 + 365.25 * 86400.0 / kavren::kTU;
  int flag = 1;
  RK::RKF78(TwoBodyDy, y, para, t, tout, 7, relTol, absTol, flag, work, 100000, nullptr);
  EXPECT_EQ(flag, 2);
  EXPECT_EQ(t, tout);  // lands on tout exactly
  EXPECT_EQ(y[6], 1000.0);  // a coast keeps the mass
  double expected[6];
  kepler(rv0, tout - 0.5, expected);
  *dr_km = std::hypot(y[0] - expected[0], y[1] - expected[1], y[2] - expected[2]) * kavren::kLU;
  *dv_kms = std::hypot(y[3] - expected[3], y[4] - expected[4], y[5] - expected[5]) * kavren::kVU;
}

TEST(RKF78Kepler, CoastOverAYearMatchesKeplerToAMetre) {
  const double tight[7] = {1e-15, 1e-15, 1e-15, 1e-15, 1e-15, 1e-15, 1e-15};
  double dr = 0.0, dv = 0.0;
  coast_a_year(1e-14, tight, &dr, &dv);
  EXPECT_LT(dr, 1e-3);
  EXPECT_LT(dv, 1e-10);
}

// The check's own settings leave a few metres over a year on this eccentric orbit, far
// inside the 1000 km the comparison allows.
TEST(RKF78Kepler, CoastAtTheCheckSettingsStaysWithinTenMetres) {
  double dr = 0.0, dv = 0.0;
  coast_a_year(1e-12, kAbsTol, &dr, &dv);
  EXPECT_LT(dr, 1e-2);
  EXPECT_LT(dv, 1e-9);
}

TEST(RKF78Kepler, BackwardCoastLandsOnTheEarlierTime) {
  double y[7];
  ellipse_state(y);
  double rv0[6];
  for (int i = 0; i < 6; ++i) rv0[i] = y[i];
  const double para[1] = {0.0};
  double work[14 * 7];
  double t = 3.0;
  int flag = 1;
  RK::RKF78(TwoBodyDy, y, para, t, 1.0, 7, 1e-12, kAbsTol, flag, work, 100000, nullptr);
  EXPECT_EQ(flag, 2);
  EXPECT_EQ(t, 1.0);
  double expected[6];
  kepler(rv0, -2.0, expected);
  EXPECT_LT(std::hypot(y[0] - expected[0], y[1] - expected[1], y[2] - expected[2]) * kavren::kLU,
            1e-3);
}

// --- Status flags --------------------------------------------------------------------------

void constant_rate(double, const double*, double* dy, const double*) { dy[0] = 1.0; }
void still(double, const double*, double* dy, const double*) { dy[0] = 0.0; }
int g_calls = 0;
// A right-hand side that flips sign at every call: no step is ever smooth enough.
void jittery(double, const double*, double* dy, const double*) {
  dy[0] = (++g_calls % 2 == 0) ? 1e10 : -1e10;
}

struct Outcome78 {
  int flag;
  int returned;
  double t;
  double y;
};

Outcome78 run(RK::DerivFn model, double t, double tout, int flag, double relTol = 1e-12,
        double absTol = 1.0, int maxEval = 100000, int dim = 1, double y0 = 0.0,
        std::FILE* out = nullptr) {
  double y = y0;
  double work[14];
  const int returned = RK::RKF78(model, &y, nullptr, t, tout, dim, relTol, &absTol, flag, work,
                                 maxEval, out);
  return {flag, returned, t, y};
}

TEST(RKF78Flags, EmptyIntervalDoublesTheEntryFlagAndWritesOneLine) {
  std::FILE* out = std::tmpfile();
  ASSERT_NE(out, nullptr);
  const Outcome78 r = run(constant_rate, 2.0, 2.0 + 0.9e-14, 1, 1e-12, 1.0, 100000, 1, 4.5, out);
  EXPECT_EQ(r.flag, 2);
  EXPECT_EQ(r.returned, 1);
  EXPECT_EQ(r.t, 2.0 + 0.9e-14);
  EXPECT_EQ(r.y, 4.5);
  std::rewind(out);
  char text[128] = {};
  const std::size_t size = std::fread(text, 1, sizeof text - 1, out);
  std::fclose(out);
  char expected[128];
  std::snprintf(expected, sizeof expected, "%22.14e%24.14e\n", 2.0 + 0.9e-14, 4.5);
  EXPECT_EQ(std::string(text, size), std::string(expected));
  EXPECT_EQ(run(constant_rate, 2.0, 2.0, -1).flag, -2);
  EXPECT_EQ(run(constant_rate, 2.0, 2.0, 5).flag, 10);
  EXPECT_EQ(run(constant_rate, 2.0, 2.0, 0).flag, 0);  // nothing validated first
}

TEST(RKF78Flags, InvalidInputGivesEight) {
  EXPECT_EQ(run(constant_rate, 0.0, 1.0, 1, 1e-12, 1.0, 100000, 0).flag, 8);
  EXPECT_EQ(run(constant_rate, 0.0, 1.0, 1, -1e-12).flag, 8);
  EXPECT_EQ(run(constant_rate, 0.0, 1.0, 1, 1e-12, -1e-10).flag, 8);
  EXPECT_EQ(run(constant_rate, 0.0, 1.0, 0).flag, 8);
  EXPECT_EQ(run(constant_rate, 0.0, 1.0, 9).flag, 8);
  EXPECT_EQ(run(constant_rate, 0.0, 1.0, -9).flag, 8);
  const Outcome78 r = run(constant_rate, 0.0, 1.0, 9, 1e-12, 1.0, 100000, 1, 3.0);
  EXPECT_EQ(r.returned, 0);
  EXPECT_EQ(r.t, 0.0);
  EXPECT_EQ(r.y, 3.0);
}

TEST(RKF78Flags, RelativeToleranceFloor) {
  const Outcome78 refused = run(constant_rate, 0.0, 1.0, 1, 1e-15);
  EXPECT_EQ(refused.flag, 3);
  EXPECT_EQ(refused.returned, 0);
  EXPECT_EQ(refused.t, 0.0);
  EXPECT_EQ(run(constant_rate, 0.0, 1.0, 1, 1e-12).flag, 2);
}

TEST(RKF78Flags, IntervalModeReachesToutExactly) {
  const Outcome78 r = run(constant_rate, 0.0, 10.0, 1);
  EXPECT_EQ(r.flag, 2);
  EXPECT_EQ(r.t, 10.0);
  EXPECT_DOUBLE_EQ(r.y, 10.0);
}

// y' = 1 from 0 with absTol 1: the first step is 1 (tol / |f|)^(1/8); an error-free step
// grows the next by 5.
TEST(RKF78Flags, OneStepModeAndRestartsWithoutAFreshEvaluation) {
  double y = 0.0;
  double t = 0.0;
  double work[14];
  const double absTol = 1.0;
  int flag = -1;
  RK::RKF78(constant_rate, &y, nullptr, t, 10.0, 1, 1e-12, &absTol, flag, work, 100000, nullptr);
  EXPECT_EQ(flag, -2);
  EXPECT_EQ(t, 1.0);
  flag = 2;  // reset to 0: one step on the stored derivative
  RK::RKF78(constant_rate, &y, nullptr, t, 10.0, 1, 1e-12, &absTol, flag, work, 100000, nullptr);
  EXPECT_EQ(flag, -2);
  EXPECT_EQ(t, 2.0);  // every call chooses its first step afresh
  flag = -2;
  RK::RKF78(constant_rate, &y, nullptr, t, 2.5, 1, 1e-12, &absTol, flag, work, 100000, nullptr);
  EXPECT_EQ(flag, 2);
  EXPECT_EQ(t, 2.5);
  EXPECT_DOUBLE_EQ(y, 2.5);

  // Flags 3 and 4 on entry also continue in one-step mode on block 0: a block 0 holding
  // a rate of 2 is used for the first-step choice, not re-evaluated.
  for (int entry : {3, 4}) {
    double yy = 0.0, tt = 0.0;
    work[0] = 2.0;
    int f = entry;
    RK::RKF78(constant_rate, &yy, nullptr, tt, 10.0, 1, 1e-12, &absTol, f, work, 100000, nullptr);
    EXPECT_EQ(f, -2) << entry;
    EXPECT_EQ(tt, std::pow(0.5, 0.125)) << entry;
  }
}

TEST(RKF78Flags, IntervalUnderTwoStepsIsTakenInTwoHalves) {
  double y = 0.0, t = 0.0, work[14];
  const double absTol = 1.0;
  int flag = -1;
  RK::RKF78(constant_rate, &y, nullptr, t, 1.5, 1, 1e-12, &absTol, flag, work, 100000, nullptr);
  EXPECT_EQ(flag, -2);
  EXPECT_EQ(t, 0.75);
  RK::RKF78(constant_rate, &y, nullptr, t, 1.5, 1, 1e-12, &absTol, flag, work, 100000, nullptr);
  EXPECT_EQ(flag, 2);
  EXPECT_EQ(t, 1.5);
}

TEST(RKF78Flags, BudgetIsTestedAtEachNewStep) {
  const Outcome78 none = run(constant_rate, 0.0, 10.0, 1, 1e-12, 1.0, 0);
  EXPECT_EQ(none.flag, 4);
  EXPECT_EQ(none.t, 0.0);
  // One evaluation at the start and 8 + 1 for the first step make 10.
  const Outcome78 one = run(constant_rate, 0.0, 10.0, 1, 1e-12, 1.0, 9);
  EXPECT_EQ(one.flag, 4);
  EXPECT_EQ(one.t, 1.0);
  const Outcome78 two = run(constant_rate, 0.0, 10.0, 1, 1e-12, 1.0, 10);
  EXPECT_EQ(two.flag, 4);
  EXPECT_EQ(two.t, 5.5);
}

TEST(RKF78Flags, NonPositiveErrorScaleGivesFive) {
  const Outcome78 r = run(still, 0.0, 1.0, 1, 1e-12, 0.0);
  EXPECT_EQ(r.flag, 5);
  EXPECT_EQ(r.returned, 0);
  EXPECT_EQ(r.t, 0.0);
}

TEST(RKF78Flags, UnattainableAccuracyGivesSix) {
  g_calls = 0;
  const Outcome78 r = run(jittery, 1000.0, 1001.0, 1, 1e-12, 1e-12, 100000, 1, 1.0);
  EXPECT_EQ(r.flag, 6);
  EXPECT_EQ(r.t, 1000.0);
  EXPECT_EQ(r.y, 1.0);
}

TEST(RKF78Flags, OutputFileHasOneLinePerAcceptedStep) {
  std::FILE* out = std::tmpfile();
  ASSERT_NE(out, nullptr);
  const Outcome78 r = run(constant_rate, 0.0, 10.0, 1, 1e-12, 1.0, 100000, 1, 0.0, out);
  EXPECT_EQ(r.flag, 2);
  EXPECT_EQ(r.returned, 3);  // steps of 1, 4.5 and 4.5
  std::rewind(out);
  char line[128];
  std::vector<std::string> lines;
  while (std::fgets(line, sizeof line, out) != nullptr) lines.emplace_back(line);
  std::fclose(out);
  ASSERT_EQ(lines.size(), 3u);
  for (const std::string& l : lines) EXPECT_EQ(l.size(), 22u + 24u + 1u) << l;
  char expected[128];
  std::snprintf(expected, sizeof expected, "%22.14e%24.14e\n", 10.0, r.y);
  EXPECT_EQ(lines[2], std::string(expected));
}

}  // namespace
