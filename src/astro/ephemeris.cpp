#include "astro/ephemeris.h"

#include <cmath>

#include "astro/anomaly.h"
#include "astro/constants.h"
#include "astro/elements.h"

namespace {

// Classical elements at MJD 64328 (a km, e, i, RAAN, omega, M0 in rad), row = id + 4.
// Row 3 (id -1) repeats the Earth but is never selected.
const double kPlanetElements[5][6] = {
    {227951663.551, 0.0933662184095, 0.03223504991302703, 0.8631580662936594, 5.004400528341373,
     4.157933432070761},
    {149579151.285, 0.0165519129162, 8.105119774030934e-05, 3.472444360959822, 4.589524166260071,
     6.248975099261001},
    {108208010.521, 0.00672988099539, 0.059243298446877056, 1.3365668541085929, 0.9618635023041548,
     0.1941127564127224},
    {149579151.285, 0.0165519129162, 8.105119774030934e-05, 3.472444360959822, 4.589524166260071,
     6.248975099261001},
    {149579151.285, 0.0165519129162, 8.105119774030934e-05, 3.472444360959822, 4.589524166260071,
     6.248975099261001},
};

bool is_planet(int id) {
  return id == -4 || id == -3 || id == -2 || id == 0;
}

// Elements of body id (a in km, angles in rad) from its catalogue row when it is an
// asteroid; false for an unknown body.
bool body_elements(int id, const double* asteroid_row, double* ele) {
  if (is_planet(id)) {
    for (int k = 0; k < 6; ++k) ele[k] = kPlanetElements[id + 4][k];
    return true;
  }
  if (asteroid_row == nullptr) return false;
  ele[0] = asteroid_row[1] * kavren::kAU;
  ele[1] = asteroid_row[2];
  for (int k = 2; k < 6; ++k) ele[k] = asteroid_row[k + 1] * kavren::kDeg2Rad;
  return true;
}

// Mean anomaly ele[5] at the element epoch moved to M, then the Kepler solution.
void state_from_mean_anomaly(int& flag, double* rv, const double* ele, double M, double mu,
                             int MaxIter, double epsilon) {
  const double e = ele[1];
  const double E = M2E(flag, M, e, MaxIter, epsilon);
  if (flag == 0) return;
  const double f = E2f(flag, E, e);
  if (flag == 0) return;
  const double coe[6] = {ele[0], e, ele[2], ele[3], ele[4], f};
  coe2rv(flag, rv, coe, mu);
  flag = 1;
}

void state_of(int& flag, double* rv, int id, double t, const double* asteroid_row) {
  double ele[6];
  if (!body_elements(id, asteroid_row, ele)) {
    flag = 0;
    return;
  }
  const double a = ele[0];
  const double M = ele[5] + std::sqrt(kavren::kMuSun / (a * a * a)) *
                                (t - kavren::kElementEpochMjd) * kavren::kSecondsPerDay;
  state_from_mean_anomaly(flag, rv, ele, M, kavren::kMuSun, 100, 1.0e-14);
}

}  // namespace

namespace kavren {

AsteroidTable::AsteroidTable()
    : data_(static_cast<std::size_t>(kNumAsteroids) * kCatalogueColumns, 0.0),
      rows_(static_cast<std::size_t>(kNumAsteroids)) {
  for (int id = 1; id <= kNumAsteroids; ++id) rows_[static_cast<std::size_t>(id - 1)] = row(id);
}

void body_state(int& flag, double* rv, int id, double t, AsteroidRows asteroids) {
  const bool asteroid = id >= 1 && id <= kNumAsteroids && asteroids != nullptr;
  state_of(flag, rv, id, t, asteroid ? asteroids[id - 1] : nullptr);
}

double speed_relative_to_body(int id, double t, const double* v, AsteroidRows asteroids) {
  double body[6] = {0.0, 0.0, 0.0, 0.0, 0.0, 0.0};
  int flag = 0;
  body_state(flag, body, id, t, asteroids);
  const double dx = v[0] - body[3], dy = v[1] - body[4], dz = v[2] - body[5];
  return std::sqrt(dx * dx + dy * dy + dz * dz);
}

}  // namespace kavren

void Ele0dt2rvt(int& flag, double* rv, const double* ele0, double mu, double dt, int MaxIter,
                double epsilon) {
  const double M = M0dt2Mt(ele0[5], mu, ele0[0], dt);
  state_from_mean_anomaly(flag, rv, ele0, M, mu, MaxIter, epsilon);
}
