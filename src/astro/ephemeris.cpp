#include "astro/ephemeris.h"

#include <cmath>

#include "astro/anomaly.h"
#include "astro/constants.h"
#include "astro/elements.h"
#include "readers/catalogue.h"

namespace {

// Classical elements at MJD 64328 (a km, e, i, RAAN, omega, M0 in rad), row = id + 4.
// Row 3 (id -1) repeats the Earth but is never selected.
const double kPlanetElements[5][6] = {
    {227951663.551, 0.0933662184095, 0.03223504991302703, 0.8631580662936594, 5.004400528341373,
     4.157933432070761},
    {149579151.285, 0.0165519129162, 8.105119774030934e-05, 3.472444360959822, 4.589524166260071,
     6.248975099261001},
    {108208010.521, 0.00672988099539, 0.059243298446877056, 1.3365668541085929,
     0.9618635023041548, 0.1941127564127224},
    {149579151.285, 0.0165519129162, 8.105119774030934e-05, 3.472444360959822, 4.589524166260071,
     6.248975099261001},
    {149579151.285, 0.0165519129162, 8.105119774030934e-05, 3.472444360959822, 4.589524166260071,
     6.248975099261001},
};

bool is_planet(int id) { return id == -4 || id == -3 || id == -2 || id == 0; }

// Elements of body id (a in km, angles in rad); false for an unknown body or a
// catalogue that is not loaded.
bool body_elements(int id, double* ele) {
  if (is_planet(id)) {
    for (int k = 0; k < 6; ++k) ele[k] = kPlanetElements[id + 4][k];
    return true;
  }
  if (id < 1 || id > kavren::kNumAsteroids || t_eles_asteroids == nullptr) return false;
  const double* record = t_eles_asteroids[id - 1];
  if (record == nullptr) return false;
  ele[0] = record[1] * 149597870.691;
  ele[1] = record[2];
  for (int k = 2; k < 6; ++k) ele[k] = record[k + 1] * 0.017453292519943295;
  return true;
}

// Mean anomaly ele[5] at the reference epoch moved to M, then the Kepler solution.
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

double norm3(double x, double y, double z) { return std::sqrt(x * x + y * y + z * z); }

}  // namespace

void getrv_stats_asteroids(int& flag, double* rv, int id, double t) {
  double ele[6];
  if (!body_elements(id, ele)) {
    flag = 0;
    return;
  }
  const double a = ele[0];
  const double M = ele[5] + std::sqrt(132712440018.0 / (a * a * a)) * (t - 64328.0) * 86400.0;
  state_from_mean_anomaly(flag, rv, ele, M, 132712440018.0, 100, 1.0e-14);
}

void Ele0dt2rvt(int& flag, double* rv, const double* ele0, double mu, double dt, int MaxIter,
                double epsilon) {
  const double M = M0dt2Mt(ele0[5], mu, ele0[0], dt);
  state_from_mean_anomaly(flag, rv, ele0, M, mu, MaxIter, epsilon);
}

// A body whose ephemeris fails is compared as a body at rest at the Sun.
double get_vinf(int id, StateStruct s) {
  double body[6] = {0.0, 0.0, 0.0, 0.0, 0.0, 0.0};
  int flag = 0;
  getrv_stats_asteroids(flag, body, id, s.epoch);
  return norm3(s.v[0] - body[3], s.v[1] - body[4], s.v[2] - body[5]);
}

void err_state_ship(int id, StateStruct s, double& dr, double& dv) {
  double body[6] = {0.0, 0.0, 0.0, 0.0, 0.0, 0.0};
  int flag = 0;
  getrv_stats_asteroids(flag, body, id, s.epoch);
  const double ship[6] = {s.r[0], s.r[1], s.r[2], s.v[0], s.v[1], s.v[2]};
  get_error_shipandstar(ship, body, dr, dv);
}

void get_error_2structs(StateStruct a, StateStruct b, double& dt, double& dr, double& dv,
                        double& dm) {
  dt = std::fabs(a.epoch - b.epoch);
  dr = norm3(a.r[0] - b.r[0], a.r[1] - b.r[1], a.r[2] - b.r[2]);
  dv = norm3(a.v[0] - b.v[0], a.v[1] - b.v[1], a.v[2] - b.v[2]);
  dm = std::fabs(a.mass - b.mass);
}

void get_error_shipandstar(const double* rv1, const double* rv2, double& dr, double& dv) {
  dr = norm3(rv1[0] - rv2[0], rv1[1] - rv2[1], rv1[2] - rv2[2]);
  dv = norm3(rv1[3] - rv2[3], rv1[4] - rv2[4], rv1[5] - rv2[5]);
}

bool get_angle_2vinfs(int id, const double* vinf_in, const double* vinf_out, double& angle,
                      double& max_angle) {
  const double vin = norm3(vinf_in[0], vinf_in[1], vinf_in[2]);
  const double vout = norm3(vinf_out[0], vinf_out[1], vinf_out[2]);
  if (vin < 0.001 || vout < 0.001) return false;
  const double dot = vinf_in[0] * vinf_out[0] + vinf_in[1] * vinf_out[1] + vinf_in[2] * vinf_out[2];
  angle = std::acos(dot / (vin * vout));
  double mu = 324858.592, rp = 6351.0;  // Venus, also for any identifier not listed
  if (id == -4) {
    mu = 42828.375214;
    rp = 3689.0;
  } else if (id == -3) {
    mu = 398600.435436;
    rp = 6678.0;
  }
  max_angle = 2.0 * std::asin(mu / (vin * vin * rp + mu));
  return true;
}
