// The fixed-step fourth-order integrator: local error order on an exact solution, and the
// stepping driver's defined behaviour.
#include "lowthrust/rk4.h"

#include <gtest/gtest.h>

#include <cmath>

#include "console/checks.h"
#include "lowthrust/dynamics.h"
#include "support/reference.h"

namespace {

using kavren::test::circular_orbit;
using kavren::test::local_error_slopes;

// y' = cos t, y = sin t: a right-hand side of time alone, where only the nodes and the
// weights of the stages count.
void wave(double t, const double*, double* dy, const double*) {
  dy[0] = std::cos(t);
}

// One step from a point of the unit circular orbit, and one of y' = cos t: the local
// error falls as h^5.
TEST(RK4, LocalErrorFallsAsTheFifthPowerOfTheStep) {
  const auto orbit_error = [](double h) {
    double y[7], exact[7], ynew[7], work[14];
    circular_orbit(0.3, y);
    circular_orbit(0.3 + h, exact);
    const double line[1] = {0.0};
    RK::RK4(TwoBodyDy, y, line, 0.3, h, ynew, 7, work);
    return kavren::test::distance(ynew, exact, 6);
  };
  for (double slope : local_error_slopes(orbit_error, 0.4, 4)) EXPECT_NEAR(slope, 5.0, 0.15);
  const auto wave_error = [](double h) {
    const double y[1] = {std::sin(0.3)};
    double ynew[1], work[2];
    RK::RK4(wave, y, nullptr, 0.3, h, ynew, 1, work);
    return std::fabs(ynew[0] - std::sin(0.3 + h));
  };
  for (double slope : local_error_slopes(wave_error, 0.4, 4)) EXPECT_NEAR(slope, 5.0, 0.25);
}

void growth(double, const double* y, double* dy, const double*) {
  dy[0] = y[0];
}
int g_calls = 0;
void counted(double, const double*, double*, const double*) {
  ++g_calls;
}

TEST(RK4, DriverRunsBackwardsAndFinishesAStepThatCannotAdvance) {
  double y[1] = {1.0};
  double t = 1.0;
  double work[3];
  EXPECT_EQ(RK::RK4(growth, y, nullptr, t, 0.0, 0.01, 1, work, nullptr), 0);
  EXPECT_NEAR(t, 0.0, 1e-15);
  EXPECT_NEAR(y[0], std::exp(-1.0), 1e-9);
  // A step that cannot approach tout would repeat for ever: the remainder is taken at once.
  for (double h : {0.0, -0.5, 1e-30}) {
    g_calls = 0;
    double tt = 1e10;
    EXPECT_EQ(RK::RK4(counted, nullptr, nullptr, tt, 1e10 + 3.0, h, 0, work, nullptr), 0);
    EXPECT_EQ(tt, 1e10 + 3.0) << h;
    EXPECT_EQ(g_calls, 4) << h;
  }
}

}  // namespace
