// DynFun driven by an integrator over whole revolutions. The library's own integrators
// are not available to this test program yet, so the test's fixed-step RK4 drives it.
#include <gtest/gtest.h>

#include <cmath>

#include "orbit/orbit_test_support.h"
#include "orbit/orbit_utils.h"

namespace {

using orbit_test::kMuEarth;
using orbit_test::kPi;

struct Invariants {
  double energy;
  double h[3];
};

Invariants invariants(const double* y) {
  const double r = std::sqrt(y[0] * y[0] + y[1] * y[1] + y[2] * y[2]);
  const double v2 = y[3] * y[3] + y[4] * y[4] + y[5] * y[5];
  return {0.5 * v2 - kMuEarth / r,
          {y[1] * y[5] - y[2] * y[4], y[2] * y[3] - y[0] * y[5], y[0] * y[4] - y[1] * y[3]}};
}

// Largest position (km) and velocity (km/s) mismatch after one period in `steps` steps.
void one_period(const double* el, int steps, double& dr, double& dv, double& worst_energy,
                double& worst_h) {
  const double para[1] = {kMuEarth};
  double y0[6];
  orbit_test::elements_to_state(y0, el, kMuEarth);
  double y[6] = {y0[0], y0[1], y0[2], y0[3], y0[4], y0[5]};
  const Invariants start = invariants(y0);
  const double period = 2.0 * kPi * std::sqrt(el[0] * el[0] * el[0] / kMuEarth);
  const double h = period / steps;
  double t = 0.0;
  worst_energy = 0.0;
  worst_h = 0.0;
  const int chunks = 20;
  for (int c = 0; c < chunks; ++c) {
    orbit_test::rk4_steps(DynFun, y, para, t, h, steps / chunks);
    const Invariants now = invariants(y);
    worst_energy = std::fmax(worst_energy, std::fabs(now.energy / start.energy - 1.0));
    for (int k = 0; k < 3; ++k) {
      worst_h = std::fmax(worst_h, std::fabs(now.h[k] - start.h[k]) / std::fabs(start.h[2]));
    }
  }
  dr = std::sqrt((y[0] - y0[0]) * (y[0] - y0[0]) + (y[1] - y0[1]) * (y[1] - y0[1]) +
                 (y[2] - y0[2]) * (y[2] - y0[2]));
  dv = std::sqrt((y[3] - y0[3]) * (y[3] - y0[3]) + (y[4] - y0[4]) * (y[4] - y0[4]) +
                 (y[5] - y0[5]) * (y[5] - y0[5]));
}

const double kDeg = kPi / 180.0;

TEST(DynFunIntegration, ReturnsToItsStartAfterOnePeriod) {
  const double orbits[][6] = {
      {7000.0, 0.01, 51.6 * kDeg, 10.0 * kDeg, 20.0 * kDeg, 30.0 * kDeg},
      {26560.0, 0.6, 63.4 * kDeg, 200.0 * kDeg, 270.0 * kDeg, 180.0 * kDeg},
  };
  for (const auto& el : orbits) {
    double dr, dv, de, dh;
    one_period(el, 4000, dr, dv, de, dh);
    const double v_circ = std::sqrt(kMuEarth / el[0]);
    EXPECT_LT(dr, 1e-9 * el[0]);
    EXPECT_LT(dv, 1e-9 * v_circ);
    EXPECT_LT(de, 1e-10);
    EXPECT_LT(dh, 1e-11);
  }
}

// A right-hand side that is the true two-body field leaves only the integrator's own
// error, which for RK4 falls sixteenfold when the step halves.
TEST(DynFunIntegration, ClosureErrorFallsAtFourthOrder) {
  const double el[6] = {26560.0, 0.6, 63.4 * kDeg, 200.0 * kDeg, 270.0 * kDeg, 180.0 * kDeg};
  double dr1, dv1, dr2, dv2, de, dh;
  one_period(el, 1000, dr1, dv1, de, dh);
  one_period(el, 2000, dr2, dv2, de, dh);
  EXPECT_NEAR(dr1 / dr2, 16.0, 3.0);
  EXPECT_NEAR(dv1 / dv2, 16.0, 3.0);
}

}  // namespace
