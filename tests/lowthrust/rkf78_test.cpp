// The Fehlberg 7(8) integrator: tableau conditions, the order of its step and the
// invariants of a coast against exact two-body motion, and the status flags of its driver.
#include "lowthrust/rkf78.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "astro/constants.h"
#include "console/checks.h"
#include "lowthrust/dynamics.h"
#include "lowthrust/rkf78_loop.h"
#include "lowthrust/thrust_table.h"
#include "support/reference.h"

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
    for (int j = 0; j < 13; ++j)
      sum += RK::RKFc[j] * std::pow(static_cast<long double>(RK::RKFa[j]), k);
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
      for (int l = 0; l < j; ++l)
        inner += RK::RKFb[j][l] * std::pow(static_cast<long double>(RK::RKFa[l]), k);
      sum += RK::RKFc[j] * inner;
    }
    EXPECT_NEAR(static_cast<double>(sum), 1.0 / ((k + 1) * (k + 2)), 1e-14) << "k = " << k;
  }
}

// The edges of the step-size helpers: a NaN error ratio is dropped, the magnitude of
// INT_MIN stays defined, an empty array has the neutral extreme and nothing past the
// count is read.
TEST(RKUtilities, EdgesStayDefined) {
  EXPECT_TRUE(std::isnan(RK::Max(NAN, 2.0)));
  EXPECT_EQ(RK::Max(0.0, NAN), 0.0);
  // Ties take b: +0 and -0 tell which.
  EXPECT_FALSE(std::signbit(RK::Max(-0.0, 0.0)));
  EXPECT_TRUE(std::signbit(RK::Min(0.0, -0.0)));
  EXPECT_EQ(RK::CopySign(-2147483647 - 1, 1), 2147483647);
  EXPECT_EQ(RK::CopySign(-3.0, 0.0), 3.0);  // a zero sign counts as positive
  EXPECT_TRUE(std::signbit(RK::CopySign(0.0, -1.0)));
  EXPECT_EQ(RK::ArrayMin(nullptr, 0), INFINITY);
  EXPECT_EQ(RK::ArrayMax(nullptr, 0), -INFINITY);
  // Only the first n elements count.
  const double a[3] = {1.0, -2.0, 9.0};
  EXPECT_EQ(RK::ArrayMax(a, 2), 1.0);
  EXPECT_EQ(RK::ArrayMin(a + 1, 1), -2.0);
  EXPECT_EQ(RK::ArrayMin(a, 1), 1.0);
}

// --- Against exact two-body motion -------------------------------------------------------

using kavren::test::circular_orbit;
using kavren::test::kepler;

const double kAbsTol[7] = {1e-10, 1e-10, 1e-10, 1e-12, 1e-12, 1e-12, 1e-08};
const double kLine[1] = {0.0};

// y' = cos t, y = sin t: a right-hand side of time alone, where only the nodes and the
// weights of the stages count.
void wave(double t, const double*, double* dy, const double*) {
  dy[0] = std::cos(t);
}

// One step with the eighth-order weights from a point of the circular orbit: the local
// error falls as h^9.
TEST(RKF78Step, LocalErrorFallsAsTheNinthPowerOfTheStep) {
  const auto error = [](double h) {
    double y[7], exact[7], ynew[7], K[13 * 7];
    circular_orbit(0.3, y);
    circular_orbit(0.3 + h, exact);
    TwoBodyDy(0.3, y, K, kLine);
    RK::RKF78Step(TwoBodyDy, y, kLine, 0.3, h, ynew, 7, K);
    return kavren::test::distance(ynew, exact, 6);
  };
  for (double slope : kavren::test::local_error_slopes(error, 1.6, 3)) {
    EXPECT_NEAR(slope, 9.0, 0.3);
  }
  const auto wave_error = [](double h) {
    const double y[1] = {std::sin(0.3)};
    double ynew[1], K[13];
    wave(0.3, y, K, nullptr);
    RK::RKF78Step(wave, y, nullptr, 0.3, h, ynew, 1, K);
    return std::fabs(ynew[0] - std::sin(0.3 + h));
  };
  for (double slope : kavren::test::local_error_slopes(wave_error, 0.8, 2)) {
    EXPECT_NEAR(slope, 9.0, 0.3);
  }
}

// An eccentric inclined orbit (a = 1.3, e = 0.25) in canonical units.
void ellipse_state(double* y) {
  const double a = 1.3, e = 0.25, p = a * (1.0 - e * e), f = 0.4;
  const double r = p / (1.0 + e * std::cos(f));
  const double in_plane[6] = {r * std::cos(f),
                              r * std::sin(f),
                              0.0,
                              -std::sqrt(1.0 / p) * std::sin(f),
                              std::sqrt(1.0 / p) * (e + std::cos(f)),
                              0.0};
  const double ci = std::cos(0.3), si = std::sin(0.3);
  for (int k = 0; k < 2; ++k) {
    const double* v = in_plane + 3 * k;
    y[3 * k] = v[0];
    y[3 * k + 1] = v[1] * ci;
    y[3 * k + 2] = v[1] * si;
  }
  y[6] = 1000.0;
}

// A year of coasting at the check's settings, one step at a time: energy and angular
// momentum hold after every step, the end agrees with Kepler motion, and the way back
// lands on the start.
TEST(RKF78Coast, InvariantsAfterEveryStepForwardThenBack) {
  double y[7];
  ellipse_state(y);
  double start[7];
  std::copy(y, y + 7, start);
  const double e0 = kavren::test::energy(y);
  double h0[3];
  kavren::test::angular_momentum(y, h0);
  const double year = 365.25 * 86400.0 / kavren::kTU;
  double work[14 * 7];
  double t = 0.5;
  int steps = 0;
  for (double tout : {0.5 + year, 0.5}) {
    int flag = -1;
    while (flag != 2) {
      RK::RKF78(TwoBodyDy, y, kLine, t, tout, 7, 1e-12, kAbsTol, flag, work, 100000, nullptr);
      ASSERT_TRUE(flag == -2 || flag == 2) << flag;
      double h[3];
      kavren::test::angular_momentum(y, h);
      ASSERT_LT(std::fabs(kavren::test::energy(y) / e0 - 1.0), 1e-11) << "step " << steps;
      ASSERT_LT(kavren::test::distance(h, h0, 3), 1e-11) << "step " << steps;
      ASSERT_EQ(y[6], 1000.0);
      ++steps;
    }
    EXPECT_EQ(t, tout);
    if (tout != 0.5) {
      double expected[6];
      kepler(start, year, expected);
      EXPECT_LT(kavren::test::distance(y, expected, 3) * kavren::kLU, 1e-2);  // km
      EXPECT_LT(kavren::test::distance(y + 3, expected + 3, 3) * kavren::kVU, 1e-9);
    }
  }
  EXPECT_GT(steps, 20);
  EXPECT_LT(kavren::test::distance(y, start, 3) * kavren::kLU, 2e-2);  // km
  EXPECT_LT(kavren::test::distance(y + 3, start + 3, 3) * kavren::kVU, 2e-9);
}

// --- Status flags --------------------------------------------------------------------------

void constant_rate(double, const double*, double* dy, const double*) {
  dy[0] = 1.0;
}
void still(double, const double*, double* dy, const double*) {
  dy[0] = 0.0;
}
int g_calls = 0;
// A right-hand side that flips sign at every call: no step is ever smooth enough.
void jittery(double, const double*, double* dy, const double*) {
  dy[0] = (++g_calls % 2 == 0) ? 1e10 : -1e10;
}

struct Call {
  RK::DerivFn model;
  double t, tout;
  int flag;
  double relTol = 1e-12, absTol = 1.0;
  int maxEval = 100000, dim = 1;
  double y0 = 0.0;
};

struct Outcome78 {
  int flag, returned;  // -1: not compared
  double t, y;         // NaN: not compared
};

Outcome78 run(const Call& r, std::FILE* out = nullptr) {
  double y = r.y0, t = r.t, work[14];
  int flag = r.flag;
  const int returned = RK::RKF78(r.model, &y, nullptr, t, r.tout, r.dim, r.relTol, &r.absTol, flag,
                                 work, r.maxEval, out);
  return {flag, returned, t, y};
}

// One call from a fresh start. With y' = 1 and absTol 1 the first step is
// 1 (tol / |f|)^(1/8) = 1, and an error-free step grows the next by 5.
TEST(RKF78Flags, OneCallEndsWithItsStatus) {
  const double x = NAN;
  const struct {
    Call run;
    Outcome78 expected;
  } cases[] = {
      // An empty interval doubles the entry flag and lands (flag 0: nothing validated).
      {{constant_rate, 2.0, 2.0 + 0.9e-14, 1, 1e-12, 1.0, 100000, 1, 4.5},
       {2, 1, 2.0 + 0.9e-14, 4.5}},
      {{constant_rate, 2.0, 2.0, -1}, {-2, -1, 2.0, x}},
      {{constant_rate, 2.0, 2.0, 5}, {10, -1, 2.0, x}},
      {{constant_rate, 2.0, 2.0, 0}, {0, -1, 2.0, x}},
      // Invalid input: dimension, tolerances, entry flags.
      {{constant_rate, 0.0, 1.0, 1, 1e-12, 1.0, 100000, 0}, {8, -1, 0.0, x}},
      {{constant_rate, 0.0, 1.0, 1, -1e-12}, {8, -1, 0.0, x}},
      {{constant_rate, 0.0, 1.0, 1, 1e-12, -1e-10}, {8, -1, 0.0, x}},
      {{constant_rate, 0.0, 1.0, 0}, {8, -1, 0.0, x}},
      {{constant_rate, 0.0, 1.0, -9}, {8, -1, 0.0, x}},
      {{constant_rate, 0.0, 1.0, 9, 1e-12, 1.0, 100000, 1, 3.0}, {8, 0, 0.0, 3.0}},
      // The relative tolerance has a floor.
      {{constant_rate, 0.0, 1.0, 1, 1e-15}, {3, 0, 0.0, x}},
      {{constant_rate, 0.0, 1.0, 1, 1e-12}, {2, -1, 1.0, x}},
      // The budget is tested at each new step: one evaluation at the start and 8 + 1 for
      // the first step make 10.
      {{constant_rate, 0.0, 10.0, 1, 1e-12, 1.0, 0}, {4, -1, 0.0, x}},
      {{constant_rate, 0.0, 10.0, 1, 1e-12, 1.0, 9}, {4, -1, 1.0, x}},
      {{constant_rate, 0.0, 10.0, 1, 1e-12, 1.0, 10}, {4, -1, 5.5, x}},
      // A non-positive error scale; an accuracy no step reaches.
      {{still, 0.0, 1.0, 1, 1e-12, 0.0}, {5, 0, 0.0, x}},
      {{jittery, 1000.0, 1001.0, 1, 1e-12, 1e-12, 100000, 1, 1.0}, {6, -1, 1000.0, 1.0}},
      // One-step mode; an interval under two steps is taken in two halves.
      {{constant_rate, 0.0, 10.0, -1}, {-2, -1, 1.0, x}},
      {{constant_rate, 0.0, 1.5, -1}, {-2, -1, 0.75, x}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(std::to_string(c.run.t) + " to " + std::to_string(c.run.tout) + " flag " +
                 std::to_string(c.run.flag) + " budget " + std::to_string(c.run.maxEval));
    const Outcome78 got = run(c.run);
    EXPECT_EQ(got.flag, c.expected.flag);
    if (c.expected.returned >= 0) {
      EXPECT_EQ(got.returned, c.expected.returned);
    }
    EXPECT_EQ(got.t, c.expected.t);
    if (!std::isnan(c.expected.y)) {
      EXPECT_EQ(got.y, c.expected.y);
    }
  }
  // A landing writes its state to the output file.
  std::FILE* out = std::tmpfile();
  ASSERT_NE(out, nullptr);
  run(cases[0].run, out);
  std::rewind(out);
  char text[128] = {}, expected[128];
  const std::size_t size = std::fread(text, 1, sizeof text - 1, out);
  std::fclose(out);
  std::snprintf(expected, sizeof expected, "%22.14e%24.14e\n", 2.0 + 0.9e-14, 4.5);
  EXPECT_EQ(std::string(text, size), std::string(expected));
}

// Calls that continue: a restart chooses its first step afresh; flags 3 and 4 on entry
// continue in one-step mode on the stored derivative (a rate of 2 in block 0 gives a
// first step of 0.5^(1/8)); the half-interval rule lands on the second call.
TEST(RKF78Flags, RestartsWithoutAFreshEvaluation) {
  double y = 0.0, t = 0.0, work[14];
  const double absTol = 1.0;
  int flag = -1;
  const auto call = [&](double tout) {
    RK::RKF78(constant_rate, &y, nullptr, t, tout, 1, 1e-12, &absTol, flag, work, 100000, nullptr);
  };
  call(10.0);
  flag = 2;  // reset to 0: one step on the stored derivative
  call(10.0);
  EXPECT_EQ(flag, -2);
  EXPECT_EQ(t, 2.0);
  flag = -2;
  call(2.5);
  EXPECT_EQ(flag, 2);
  EXPECT_EQ(t, 2.5);
  EXPECT_DOUBLE_EQ(y, 2.5);
  t = y = 0.0;
  flag = -1;
  call(1.5);
  call(1.5);
  EXPECT_EQ(flag, 2);
  EXPECT_EQ(t, 1.5);
  for (int entry : {3, 4}) {
    t = y = 0.0;
    work[0] = 2.0;
    flag = entry;
    call(10.0);
    EXPECT_EQ(flag, -2) << entry;
    EXPECT_EQ(t, std::pow(0.5, 0.125)) << entry;
  }
}

}  // namespace

// --- Legs that cannot advance --------------------------------------------------------

// A model that counts the evaluations it really makes; without `spared` the loop runs
// every step, with it the loop may replay a cycle of steps that change nothing.
template <class Model, bool kSpare>
struct Counted {
  Model& model;
  long long made = 0;
  void operator()(double t, const double* y, double* dy) {
    ++made;
    model(t, y, dy);
  }
};
template <class Model>
struct Counted<Model, true> : Counted<Model, false> {
  void spared(long long calls) { this->model.spared(calls); }
};

// Every state the loop shows its observer, as bits.
struct Recorder {
  std::vector<std::uint64_t> bits;
  void keep(double t, const double* y, int dim) {
    for (int k = -1; k < dim; ++k) {
      std::uint64_t b = 0;
      std::memcpy(&b, k < 0 ? &t : &y[k], sizeof b);
      bits.push_back(b);
    }
  }
  int land(double t, const double* y, int dim) {
    keep(t, y, dim);
    return 1;
  }
  int step(double t, const double* y, int dim) {
    keep(t, y, dim);
    return 0;
  }
  void tick() {}
};

struct LegResult {
  int flag, lines;
  double t, y[7];
  std::uint64_t evaluations;
  long long made;
  Recorder seen;
};

template <bool kSpare, class Model>
LegResult run_leg(Model model, double t, double tout, const double* y0) {
  static const double abs_tol[7] = {1e-10, 1e-10, 1e-10, 1e-12, 1e-12, 1e-12, 1e-08};
  LegResult r{};
  std::copy(y0, y0 + 7, r.y);
  r.t = t;
  r.flag = 1;
  double work[14 * 7];
  Counted<Model, kSpare> counted{model};
  r.lines =
      RK::rkf78_integrate(counted, r.y, r.t, tout, 7, 1e-12, abs_tol, r.flag, work, 100000, r.seen);
  r.evaluations = model.evaluations;
  r.made = counted.made;
  return r;
}

// A leg whose time, step or state is NaN from the start ends exactly as the full loop
// does (flag, time and state to the bit, every state shown, the evaluation count), and
// where the time stays NaN it does so without running to the evaluation budget.
TEST(RKF78Legs, NaNLegsEndAsTheFullLoopWithoutItsCost) {
  const double nan = std::nan("");
  const double y0[7] = {1.0, 0.0, 0.0, 0.0, 1.0, 0.0, 2000.0};
  const double nan_y[7] = {nan, nan, nan, nan, nan, nan, nan};
  // A one-day thrust table of four lines: one with a NaN component, one whose last two
  // lines share an epoch.
  const double day = 86400.0 / kavren::kTU;
  auto table = [&](double last_step, double ux) {
    return std::vector<double>{1.0, 4.0, 0.0, day, 2 * day, 2 * day + last_step,
                               0.1, ux,  0.1, 0.1, 0.0,     0.0,
                               0.0, 0.0, 0.0, 0.0, 0.0,     0.0};
  };
  const std::vector<double> nan_thrust = table(day, nan);
  const std::vector<double> same_epoch = table(0.0, 0.1);
  auto thrust = [](const std::vector<double>& block) {
    kavren::ThrustModel m;
    m.table = kavren::thrust_table_of(block.data(), true);
    return m;
  };
  struct Case {
    const char* name;
    bool coast;
    const std::vector<double>* block;
    double t, tout;
    const double* y;
    bool cheap;  // the time stays NaN: the fast path must take over
  } cases[] = {
      {"NaN start epoch, coast", true, nullptr, nan, 5.0, y0, true},
      {"NaN end epoch, coast", true, nullptr, 0.0, nan, y0, true},
      {"NaN state, coast", true, nullptr, 0.0, 5.0, nan_y, false},
      {"NaN start epoch, thrust", false, &same_epoch, nan, 2 * day, y0, true},
      {"NaN thrust component", false, &nan_thrust, 0.0, 3 * day, y0, false},
      {"phase closing with two lines at one epoch", false, &same_epoch, 0.0, 2 * day, y0, false},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    const LegResult fast = c.coast ? run_leg<true>(kavren::CoastModel{}, c.t, c.tout, c.y)
                                   : run_leg<true>(thrust(*c.block), c.t, c.tout, c.y);
    const LegResult full = c.coast ? run_leg<false>(kavren::CoastModel{}, c.t, c.tout, c.y)
                                   : run_leg<false>(thrust(*c.block), c.t, c.tout, c.y);
    EXPECT_EQ(fast.flag, full.flag);
    EXPECT_EQ(fast.lines, full.lines);
    EXPECT_EQ(std::memcmp(&fast.t, &full.t, sizeof fast.t), 0);
    EXPECT_EQ(std::memcmp(fast.y, full.y, sizeof fast.y), 0);
    EXPECT_EQ(fast.evaluations, full.evaluations);
    EXPECT_EQ(fast.seen.bits, full.seen.bits);
    EXPECT_EQ(full.made, static_cast<long long>(full.evaluations));
    if (c.cheap) {
      EXPECT_EQ(full.flag, 4);  // the full loop runs to the budget
      EXPECT_LT(fast.made, 1000);
    }
  }
}
