// Ephemerides of the planets and of catalogue asteroids read back as their elements with
// the mean anomaly advanced; a ship compared with a body; the turn of a flyby.
#include "astro/ephemeris.h"

#include <gtest/gtest.h>

#include <array>
#include <climits>
#include <cmath>
#include <map>
#include <vector>

#include "astro/anomaly.h"
#include "astro/elements.h"
#include "console/checks.h"
#include "events/encounters.h"
#include "readers/catalogue.h"
#include "support/two_body.h"

namespace kavren::test {
namespace {

constexpr double kStart = 64328.0;

// The state of `id` at t reads back as the elements `ele` (a km, e, i, RAAN, omega, M0 in
// rad at kStart) with M advanced at the mean motion, and obeys vis-viva.
void expect_elements(int id, const double* ele, double t) {
  SCOPED_TRACE(std::to_string(id) + " at " + std::to_string(t));
  double rv[6], coe[6];
  int flag = -1;
  getrv_stats_asteroids(flag, rv, id, t);
  ASSERT_EQ(flag, 1);
  rv2coe(flag, coe, rv, kMuSun);
  const double M = E2M(flag, f2E(flag, coe[5], coe[1]), coe[1]);
  const double n = std::sqrt(kMuSun / (ele[0] * ele[0] * ele[0]));
  EXPECT_LE(rel_err(coe[0], ele[0]), 1e-10);
  EXPECT_NEAR(coe[1], ele[1], 1e-12);
  EXPECT_NEAR(coe[2], ele[2], 1e-11);  // acos near 1: the Earth's tiny inclination
  EXPECT_LE(angle_diff(coe[3], ele[3]), 1e-9);
  EXPECT_LE(angle_diff(coe[4], ele[4]), 1e-9);
  EXPECT_LE(angle_diff(M, ele[5] + n * (t - kStart) * 86400.0), 1e-9);
  const double r = std::hypot(rv[0], rv[1], rv[2]);
  EXPECT_LE(
      rel_err(rv[3] * rv[3] + rv[4] * rv[4] + rv[5] * rv[5], kMuSun * (2.0 / r - 1.0 / ele[0])),
      1e-12);
}

TEST(PlanetEphemeris, MarsEarthVenusFollowTheirElements) {
  const std::pair<int, std::array<double, 6>> planets[] = {
      {-4,
       {227951663.551, 0.0933662184095, 0.03223504991302703, 0.8631580662936594, 5.004400528341373,
        4.157933432070761}},
      {-3,
       {149579151.285, 0.0165519129162, 8.105119774030934e-05, 3.472444360959822, 4.589524166260071,
        6.248975099261001}},
      {-2,
       {108208010.521, 0.00672988099539, 0.059243298446877056, 1.3365668541085929,
        0.9618635023041548, 0.1941127564127224}}};
  for (const auto& [id, ele] : planets) {
    for (double t : {kStart, 64000.0, 66000.5, 69807.0}) expect_elements(id, ele.data(), t);
  }
  // Body 0, the launch, is the Earth.
  double earth[6], zero[6];
  int flag = -1;
  getrv_stats_asteroids(flag, earth, -3, 66000.5);
  getrv_stats_asteroids(flag, zero, 0, 66000.5);
  EXPECT_EQ(std::vector<double>(earth, earth + 6), std::vector<double>(zero, zero + 6));
}

// A small catalogue installed as the process-wide table for the duration of a test.
class CatalogueTest : public ::testing::Test {
 protected:
  void SetUp() override {
    rows_.assign(60000, nullptr);
    set_row(1, {kStart, 2.2, 0.05, 3.0, 80.0, 150.0, 10.0});
    set_row(17, {kStart, 1.5, 0.2, 10.0, 30.0, 60.0, 45.0});
    set_row(5000, {kStart, 1.1, 1.5, 20.0, 40.0, 70.0, 5.0});        // hyperbolic
    set_row(5001, {kStart, 1.1, -0.1, 20.0, 40.0, 70.0, 5.0});       // invalid e
    set_row(60000, {kStart, 3.0, 0.6, 170.0, 300.0, 200.0, 350.0});  // last row, retrograde
    t_eles_asteroids = rows_.data();
  }
  void TearDown() override { t_eles_asteroids = nullptr; }
  void set_row(int id, std::array<double, 7> values) {
    storage_[id] = values;
    rows_[id - 1] = storage_[id].data();
  }
  std::vector<double*> rows_;
  std::map<int, std::array<double, 7>> storage_;
};

TEST_F(CatalogueTest, AsteroidsFollowTheirRowsOthersLeaveTheStateUntouched) {
  for (int id : {1, 17, 60000}) {
    const double* row = t_eles_asteroids[id - 1];
    const double ele[6] = {row[1] * kAU,  row[2],        row[3] * kDeg,
                           row[4] * kDeg, row[5] * kDeg, row[6] * kDeg};
    for (double t : {kStart, 66500.0}) expect_elements(id, ele, t);
  }
  for (int id : {-1, -5, -6, 60001, INT_MIN, INT_MAX, 2, 59999, 5001}) {
    double rv[6] = {7, 7, 7, 7, 7, 7};
    int flag = -1;
    getrv_stats_asteroids(flag, rv, id, kStart);
    EXPECT_EQ(flag, 0) << id;
    for (double x : rv) EXPECT_EQ(x, 7.0) << id;
  }
}

TEST_F(CatalogueTest, ShipComparedWithABody) {
  StateStruct s;
  s.epoch = 65000.0;
  double body[6];
  int flag = -1;
  getrv_stats_asteroids(flag, body, 17, s.epoch);
  ASSERT_EQ(flag, 1);
  const double offset[6] = {3.0, 0.0, -4.0, 1.0, -2.0, 2.0};
  for (int k = 0; k < 3; ++k) {
    s.r[k] = body[k] + offset[k];
    s.v[k] = body[k + 3] + offset[k + 3];
  }
  EXPECT_NEAR(get_vinf(17, s), 3.0, 1e-12);
  double dr = -1, dv = -1;
  err_state_ship(17, s, dr, dv);
  EXPECT_NEAR(dr, 5.0, 1e-6);
  EXPECT_NEAR(dv, 3.0, 1e-12);
  // A body whose ephemeris fails is taken at rest at the Sun.
  for (int id : {5001, -1, 60001}) {
    EXPECT_DOUBLE_EQ(get_vinf(id, s), std::hypot(s.v[0], s.v[1], s.v[2]));
    err_state_ship(id, s, dr, dv);
    EXPECT_DOUBLE_EQ(dr, std::hypot(s.r[0], s.r[1], s.r[2]));
  }
}

// The turn between two excess velocities, the second built by turning the first by a
// chosen angle, and the largest turn, which depends on the incoming speed only. Below 1 m/s
// of excess speed nothing is computed.
TEST(FlybyTurn, ActualAndLargestTurnAngle) {
  struct Case {
    int body;
    double in, out, angle;  // speeds (km/s), turn (rad)
    bool ok;
  };
  const Case cases[] = {{-3, 5.0, 2.0, 0.3, true},     {-4, 5.0, 5.0, kPi, true},
                        {-4, 1.0, 5.0, 2.5, true},     {-2, 0.0011, 5.0, 1.2, true},
                        {-2, 0.0009, 5.0, 1.2, false}, {-3, 5.0, 0.0009, 1.2, false}};
  for (const Case& c : cases) {
    const double u[3] = {3.0, -4.0, 12.0};
    double vin[3], vout[3], angle = 11.0, max_angle = 22.0;
    turned(u, c.in, 0.0, vin);
    turned(u, c.out, c.angle, vout);
    SCOPED_TRACE(show(vin, 3) + " -> " + show(vout, 3));
    EXPECT_EQ(get_angle_2vinfs(c.body, vin, vout, angle, max_angle), c.ok);
    EXPECT_NEAR(angle, c.ok ? c.angle : 11.0, c.angle == kPi ? 1e-7 : 1e-14);
    EXPECT_NEAR(max_angle, c.ok ? largest_flyby_turn(c.body, c.in) : 22.0, 1e-12);
  }
}

}  // namespace
}  // namespace kavren::test
