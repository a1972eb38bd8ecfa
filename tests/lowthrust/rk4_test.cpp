// The fixed-step fourth-order integrator: convergence order and the stepping driver.
#include "lowthrust/rk4.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <string>
#include <vector>

namespace {

void oscillator(double, const double* y, double* dy, const double*) {
  dy[0] = y[1];
  dy[1] = -y[0];
}

void growth(double, const double* y, double* dy, const double*) { dy[0] = y[0]; }

int g_calls = 0;
void counted(double, const double*, double*, const double*) { ++g_calls; }

double oscillator_error(double h) {
  double y[2] = {1.0, 0.0};
  double t = 0.0;
  double work[6];
  RK::RK4(oscillator, y, nullptr, t, 2.0, h, 2, work, nullptr);
  EXPECT_DOUBLE_EQ(t, 2.0);
  return std::hypot(y[0] - std::cos(2.0), y[1] + std::sin(2.0));
}

TEST(RK4, ConvergesWithFourthOrder) {
  const double e1 = oscillator_error(0.1);
  const double e2 = oscillator_error(0.05);
  const double e3 = oscillator_error(0.025);
  EXPECT_NEAR(std::log2(e1 / e2), 4.0, 0.1);
  EXPECT_NEAR(std::log2(e2 / e3), 4.0, 0.1);
}

TEST(RK4, SingleStepLeavesTheStartStateAlone) {
  const double y[1] = {1.0};
  double ynew[1];
  double work[2];
  RK::RK4(growth, y, nullptr, 0.0, 0.1, ynew, 1, work);
  EXPECT_EQ(y[0], 1.0);
  // Taylor series of e^h to fourth order.
  EXPECT_NEAR(ynew[0], 1.0 + 0.1 + 0.005 + 0.1 * 0.1 * 0.1 / 6.0 + 0.0001 / 24.0, 1e-15);
}

TEST(RK4, ExactMultipleEndsWithAFullStepAndWritesEveryStep) {
  std::FILE* out = std::tmpfile();
  ASSERT_NE(out, nullptr);
  double y[1] = {1.0};
  double t = 0.0;
  double work[3];
  const int lines = RK::RK4(growth, y, nullptr, t, 1.0, 0.25, 1, work, out);
  EXPECT_EQ(lines, 4);
  EXPECT_EQ(t, 1.0);
  // Each step multiplies by the fourth-order Taylor polynomial of e^h.
  const double factor = 1.0 + 0.25 + 0.25 * 0.25 / 2.0 + 0.25 * 0.25 * 0.25 / 6.0 +
                        0.25 * 0.25 * 0.25 * 0.25 / 24.0;
  EXPECT_NEAR(y[0], factor * factor * factor * factor, 1e-14);
  std::rewind(out);
  std::vector<std::string> text;
  char line[128];
  while (std::fgets(line, sizeof line, out) != nullptr) text.emplace_back(line);
  std::fclose(out);
  ASSERT_EQ(text.size(), 4u);
  char expected[128];
  std::snprintf(expected, sizeof expected, "%22.14e%24.14e\n", 1.0, y[0]);
  EXPECT_EQ(text[3], std::string(expected));
}

TEST(RK4, RunsBackwardsWhenToutIsEarlier) {
  double y[1] = {1.0};
  double t = 1.0;
  double work[3];
  EXPECT_EQ(RK::RK4(growth, y, nullptr, t, 0.0, 0.01, 1, work, nullptr), 0);
  EXPECT_NEAR(t, 0.0, 1e-15);
  EXPECT_NEAR(y[0], std::exp(-1.0), 1e-9);
}

TEST(RK4, EmptyStateStillEvaluatesFourTimesPerStep) {
  std::FILE* out = std::tmpfile();
  ASSERT_NE(out, nullptr);
  g_calls = 0;
  double t = 0.0;
  double work[1];
  EXPECT_EQ(RK::RK4(counted, nullptr, nullptr, t, 1.5, 0.5, 0, work, out), 3);
  EXPECT_EQ(g_calls, 12);
  std::rewind(out);
  char text[256] = {};
  const std::size_t size = std::fread(text, 1, sizeof text - 1, out);
  std::fclose(out);
  char expected[256];
  std::snprintf(expected, sizeof expected, "%22.14e\n%22.14e\n%22.14e\n", 0.5, 1.0, 1.5);
  EXPECT_EQ(std::string(text, size), std::string(expected));
}

// A step that cannot approach tout would repeat for ever: the remainder is taken at once.
TEST(RK4, StepThatCannotAdvanceFinishesInOneStep) {
  for (double h : {0.0, -0.5, 1e-30}) {
    g_calls = 0;
    double t = 1e10;
    double work[1];
    EXPECT_EQ(RK::RK4(counted, nullptr, nullptr, t, 1e10 + 3.0, h, 0, work, nullptr), 0);
    EXPECT_EQ(t, 1e10 + 3.0) << h;
    EXPECT_EQ(g_calls, 4) << h;
  }
}

}  // namespace
