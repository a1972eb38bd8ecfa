#include "astro/ephemeris.h"
#include "events/encounters.h"

#include <gtest/gtest.h>

#include <array>
#include <climits>
#include <cmath>
#include <cstring>
#include <vector>

#include "astro/anomaly.h"
#include "astro/elements.h"
#include "astro_test_util.h"
#include "readers/catalogue.h"

using astro_test::angle_diff;
using astro_test::kAU;
using astro_test::kDeg;
using astro_test::kMuSun;
using astro_test::kPi;
using astro_test::rel_err;

namespace {

constexpr double kStart = 64328.0;

// Elements of the planets at the mission start (a km, e, i, RAAN, omega, M0 in rad).
struct Planet {
  int id;
  double ele[6];
};
const Planet kPlanets[] = {
    {-4,
     {227951663.551, 0.0933662184095, 0.03223504991302703, 0.8631580662936594, 5.004400528341373,
      4.157933432070761}},
    {-3,
     {149579151.285, 0.0165519129162, 8.105119774030934e-05, 3.472444360959822, 4.589524166260071,
      6.248975099261001}},
    {-2,
     {108208010.521, 0.00672988099539, 0.059243298446877056, 1.3365668541085929, 0.9618635023041548,
      0.1941127564127224}},
    {0,
     {149579151.285, 0.0165519129162, 8.105119774030934e-05, 3.472444360959822, 4.589524166260071,
      6.248975099261001}},
};

// Classical elements and mean anomaly read back from a state.
struct ReadBack {
  double coe[6];
  double M;
};

ReadBack read_back(const double* rv) {
  ReadBack out{};
  int flag = -1;
  rv2coe(flag, out.coe, rv, kMuSun);
  EXPECT_EQ(flag, 1);
  const double E = f2E(flag, out.coe[5], out.coe[1]);
  EXPECT_EQ(flag, 1);
  out.M = E2M(flag, E, out.coe[1]);
  return out;
}

void expect_elements(const double* rv, const double* ele, double M) {
  const ReadBack back = read_back(rv);
  EXPECT_LE(rel_err(back.coe[0], ele[0]), 1e-10);
  EXPECT_NEAR(back.coe[1], ele[1], 1e-12);
  EXPECT_NEAR(back.coe[2], ele[2], 1e-11);  // acos near 1: the Earth's tiny inclination
  EXPECT_LE(angle_diff(back.coe[3], ele[3]), 1e-9);
  EXPECT_LE(angle_diff(back.coe[4], ele[4]), 1e-9);
  EXPECT_LE(angle_diff(back.M, M), 1e-9);
}

TEST(PlanetEphemeris, MeanAnomalyAtTheStartIsTheTableValue) {
  for (const Planet& p : kPlanets) {
    SCOPED_TRACE(p.id);
    double rv[6];
    int flag = -1;
    getrv_stats_asteroids(flag, rv, p.id, kStart);
    ASSERT_EQ(flag, 1);
    expect_elements(rv, p.ele, p.ele[5]);
  }
}

TEST(PlanetEphemeris, MeanAnomalyAdvancesWithTheMeanMotion) {
  for (const Planet& p : kPlanets) {
    for (double t : {64000.0, 66000.5, 69807.0}) {
      SCOPED_TRACE(t);
      double rv[6];
      int flag = -1;
      getrv_stats_asteroids(flag, rv, p.id, t);
      ASSERT_EQ(flag, 1);
      const double a = p.ele[0];
      const double n = std::sqrt(kMuSun / (a * a * a));
      expect_elements(rv, p.ele, p.ele[5] + n * (t - kStart) * 86400.0);
      // Vis-viva.
      const double r = std::sqrt(rv[0] * rv[0] + rv[1] * rv[1] + rv[2] * rv[2]);
      const double v2 = rv[3] * rv[3] + rv[4] * rv[4] + rv[5] * rv[5];
      EXPECT_LE(rel_err(v2, kMuSun * (2.0 / r - 1.0 / a)), 1e-12);
    }
  }
}

TEST(PlanetEphemeris, EarthUnderBothIdentifiersIsIdentical) {
  for (double t : {kStart, 65000.25, 69807.0, 1.0e6}) {
    double a[6], b[6];
    int fa = -1, fb = -1;
    getrv_stats_asteroids(fa, a, -3, t);
    getrv_stats_asteroids(fb, b, 0, t);
    EXPECT_EQ(fa, 1);
    EXPECT_EQ(fb, 1);
    EXPECT_EQ(std::memcmp(a, b, sizeof a), 0) << t;
  }
  // And the Earth is the Earth: about 1 AU from the Sun at about 29.8 km/s.
  double rv[6];
  int flag = -1;
  getrv_stats_asteroids(flag, rv, -3, kStart);
  EXPECT_NEAR(std::sqrt(rv[0] * rv[0] + rv[1] * rv[1] + rv[2] * rv[2]) / kAU, 1.0, 0.02);
  EXPECT_NEAR(std::sqrt(rv[3] * rv[3] + rv[4] * rv[4] + rv[5] * rv[5]), 29.8, 0.6);
}

TEST(PlanetEphemeris, GeneralElementPropagation) {
  // Unit circle, mu = 1: a quarter period moves (1, 0, 0) to (0, 1, 0).
  const double ele[6] = {1.0, 0.0, 0.0, 0.0, 0.0, 0.0};
  double rv[6];
  int flag = -1;
  Ele0dt2rvt(flag, rv, ele, 1.0, kPi / 2.0, 100, 1e-14);
  ASSERT_EQ(flag, 1);
  const double expected[6] = {0.0, 1.0, 0.0, -1.0, 0.0, 0.0};
  EXPECT_LE(astro_test::rv_err(rv, expected), 1e-15);
  // A failing Kepler solution leaves the state alone.
  double untouched[6] = {5, 5, 5, 5, 5, 5};
  Ele0dt2rvt(flag, untouched, ele, 1.0, 1.0, 0, 1e-14);
  EXPECT_EQ(flag, 0);
  for (double x : untouched) EXPECT_EQ(x, 5.0);
}

// A small catalogue installed as the process-wide table for the duration of a test.
class CatalogueTest : public ::testing::Test {
 protected:
  void SetUp() override {
    rows_.assign(60000, nullptr);
    storage_.reserve(8);  // row pointers stay valid
    set_row(1, {kStart, 2.2, 0.05, 3.0, 80.0, 150.0, 10.0});
    set_row(17, {kStart, 1.5, 0.2, 10.0, 30.0, 60.0, 45.0});
    set_row(5000, {kStart, 1.1, 1.5, 20.0, 40.0, 70.0, 5.0});        // hyperbolic
    set_row(5001, {kStart, 1.1, -0.1, 20.0, 40.0, 70.0, 5.0});       // invalid e
    set_row(60000, {kStart, 3.0, 0.6, 170.0, 300.0, 200.0, 350.0});  // last row, retrograde
    t_eles_asteroids = rows_.data();
  }
  void TearDown() override { t_eles_asteroids = nullptr; }

  void set_row(int id, std::array<double, 7> values) {
    storage_.push_back(values);
    rows_[id - 1] = storage_.back().data();
  }

  std::vector<double*> rows_;
  std::vector<std::array<double, 7>> storage_;
};

TEST_F(CatalogueTest, AsteroidStateReproducesItsCatalogueElements) {
  for (int id : {1, 17, 60000}) {
    SCOPED_TRACE(id);
    const double* row = t_eles_asteroids[id - 1];
    const double ele[6] = {row[1] * kAU,  row[2],        row[3] * kDeg,
                           row[4] * kDeg, row[5] * kDeg, row[6] * kDeg};
    for (double t : {kStart, 66500.0}) {
      double rv[6];
      int flag = -1;
      getrv_stats_asteroids(flag, rv, id, t);
      ASSERT_EQ(flag, 1);
      const double n = std::sqrt(kMuSun / (ele[0] * ele[0] * ele[0]));
      expect_elements(rv, ele, ele[5] + n * (t - kStart) * 86400.0);
    }
  }
}

TEST_F(CatalogueTest, HyperbolicAsteroidStillHasAState) {
  double rv[6];
  int flag = -1;
  getrv_stats_asteroids(flag, rv, 5000, 65000.0);
  ASSERT_EQ(flag, 1);
  const double a = 1.1 * kAU;
  const double r = std::sqrt(rv[0] * rv[0] + rv[1] * rv[1] + rv[2] * rv[2]);
  const double v2 = rv[3] * rv[3] + rv[4] * rv[4] + rv[5] * rv[5];
  EXPECT_LE(rel_err(v2, kMuSun * (2.0 / r + 1.0 / a)), 1e-10);  // vis-viva, hyperbola
  const ReadBack back = read_back(rv);
  EXPECT_NEAR(back.coe[1], 1.5, 1e-12);
}

TEST_F(CatalogueTest, UnknownOrFailingBodiesLeaveTheStateUntouched) {
  for (int id : {-1, -5, -6, 60001, INT_MIN, INT_MAX, 2, 59999, 5001}) {
    double rv[6] = {7, 7, 7, 7, 7, 7};
    int flag = -1;
    getrv_stats_asteroids(flag, rv, id, kStart);
    EXPECT_EQ(flag, 0) << id;
    for (double x : rv) EXPECT_EQ(x, 7.0) << id;
  }
}

TEST(Ephemeris, UnknownBodiesWithoutACatalogue) {
  ASSERT_EQ(t_eles_asteroids, nullptr);
  for (int id : {-1, -5, 1, 17, 60000, 60001, INT_MIN, INT_MAX}) {
    double rv[6] = {7, 7, 7, 7, 7, 7};
    int flag = -1;
    getrv_stats_asteroids(flag, rv, id, kStart);
    EXPECT_EQ(flag, 0) << id;
    for (double x : rv) EXPECT_EQ(x, 7.0) << id;
  }
}

TEST_F(CatalogueTest, ShipComparedWithABody) {
  double body[6];
  int flag = -1;
  getrv_stats_asteroids(flag, body, 17, 65000.0);
  ASSERT_EQ(flag, 1);
  StateStruct s;
  s.epoch = 65000.0;
  for (int k = 0; k < 3; ++k) s.r[k] = body[k];
  for (int k = 0; k < 3; ++k) s.v[k] = body[k + 3];
  s.r[0] += 3.0;
  s.r[2] -= 4.0;
  s.v[0] += 1.0;
  s.v[1] -= 2.0;
  s.v[2] += 2.0;
  EXPECT_NEAR(get_vinf(17, s), 3.0, 1e-12);
  double dr = -1, dv = -1;
  err_state_ship(17, s, dr, dv);
  EXPECT_NEAR(dr, 5.0, 1e-6);
  EXPECT_NEAR(dv, 3.0, 1e-12);

  // A body whose ephemeris fails is taken at rest at the Sun.
  for (int id : {5001, -1, 60001}) {
    EXPECT_DOUBLE_EQ(get_vinf(id, s),
                     std::sqrt(s.v[0] * s.v[0] + s.v[1] * s.v[1] + s.v[2] * s.v[2]));
    err_state_ship(id, s, dr, dv);
    EXPECT_DOUBLE_EQ(dr, std::sqrt(s.r[0] * s.r[0] + s.r[1] * s.r[1] + s.r[2] * s.r[2]));
  }
}

TEST(StateDifferences, TwoShipStatesAndTwoArrays) {
  StateStruct a, b;
  a.epoch = 65000.0;
  b.epoch = 65002.5;
  a.r[0] = 1.0, a.r[1] = 2.0, a.r[2] = 3.0;
  b.r[0] = 4.0, b.r[1] = 6.0, b.r[2] = 3.0;
  a.v[0] = 0.0, a.v[1] = 5.0, a.v[2] = 0.0;
  b.v[0] = 0.0, b.v[1] = 0.0, b.v[2] = 12.0;
  a.mass = 1000.0;
  b.mass = 1040.5;
  double dt, dr, dv, dm;
  get_error_2structs(a, b, dt, dr, dv, dm);
  EXPECT_EQ(dt, 2.5);
  EXPECT_EQ(dr, 5.0);
  EXPECT_EQ(dv, 13.0);
  EXPECT_EQ(dm, 40.5);
  get_error_2structs(b, a, dt, dr, dv, dm);
  EXPECT_EQ(dt, 2.5);
  EXPECT_EQ(dm, 40.5);

  const double rv1[6] = {1.0, 1.0, 1.0, 2.0, 2.0, 2.0};
  const double rv2[6] = {3.0, -1.0, 2.0, 2.0, 5.0, -2.0};
  get_error_shipandstar(rv1, rv2, dr, dv);
  EXPECT_EQ(dr, 3.0);
  EXPECT_EQ(dv, 5.0);
}

// Largest turn of a hyperbolic pass at periapsis rp: 2 asin(1 / (1 + rp vinf^2 / mu)).
double largest_turn(double mu, double rp, double vinf) {
  return 2.0 * std::asin(1.0 / (1.0 + rp * vinf * vinf / mu));
}

TEST(FlybyTurn, ActualAndLargestTurnAngle) {
  const double vin[3] = {3.0, 0.0, 4.0};  // 5 km/s
  const double vout_perp[3] = {0.0, 2.0, 0.0};
  const double vout_back[3] = {-0.6, 0.0, -0.8};
  double angle = 0.0, max_angle = 0.0;
  ASSERT_TRUE(get_angle_2vinfs(-3, vin, vout_perp, angle, max_angle));
  EXPECT_NEAR(angle, kPi / 2.0, 1e-15);
  EXPECT_NEAR(max_angle, largest_turn(398600.435436, 6678.0, 5.0), 1e-14);
  ASSERT_TRUE(get_angle_2vinfs(-4, vin, vout_back, angle, max_angle));
  EXPECT_NEAR(angle, kPi, 1e-7);
  EXPECT_NEAR(max_angle, largest_turn(42828.375214, 3689.0, 5.0), 1e-14);
  // The largest turn depends on the incoming speed only.
  ASSERT_TRUE(get_angle_2vinfs(-4, vout_back, vin, angle, max_angle));
  EXPECT_NEAR(max_angle, largest_turn(42828.375214, 3689.0, 1.0), 1e-14);
}

TEST(FlybyTurn, VenusConstantsForEveryOtherIdentifier) {
  const double vin[3] = {3.0, 0.0, 4.0};
  const double vout[3] = {4.0, 0.0, 3.0};
  const double venus = largest_turn(324858.592, 6351.0, 5.0);
  for (int id : {-2, 5, 0, -1, 60000}) {
    double angle = 0.0, max_angle = 0.0;
    ASSERT_TRUE(get_angle_2vinfs(id, vin, vout, angle, max_angle));
    EXPECT_NEAR(max_angle, venus, 1e-14) << id;
    EXPECT_NEAR(angle, std::acos(24.0 / 25.0), 1e-14);
  }
}

TEST(FlybyTurn, SlowExcessSpeedLeavesOutputsUntouched) {
  const double slow[3] = {0.0009, 0.0, 0.0};
  const double fast[3] = {0.0, 5.0, 0.0};
  double angle = 11.0, max_angle = 22.0;
  EXPECT_FALSE(get_angle_2vinfs(-2, slow, fast, angle, max_angle));
  EXPECT_FALSE(get_angle_2vinfs(-3, fast, slow, angle, max_angle));
  EXPECT_EQ(angle, 11.0);
  EXPECT_EQ(max_angle, 22.0);
  const double just[3] = {0.0011, 0.0, 0.0};
  EXPECT_TRUE(get_angle_2vinfs(-2, just, fast, angle, max_angle));
  EXPECT_NEAR(angle, kPi / 2.0, 1e-15);
}

}  // namespace
