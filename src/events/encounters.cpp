#include "events/encounters.h"

#include <cmath>

#include "kavren/limits.h"

namespace {

double norm3(double x, double y, double z) {
  return std::sqrt(x * x + y * y + z * z);
}

// Gravitational parameter (km^3/s^2) and minimum flyby radius (km) of the planets;
// Venus's also for any identifier not listed.
struct Planet {
  double mu, min_radius;
};
Planet planet(int id) {
  if (id == -4) return {42828.375214, 3689.0};
  if (id == -3) return {398600.435436, 6678.0};
  return {324858.592, 6351.0};
}

}  // namespace

namespace kavren {

double excess_speed(int id, const StateStruct& s, AsteroidRows asteroids) {
  return speed_relative_to_body(id, s.epoch, s.v, asteroids);
}

void state_error(int id, const StateStruct& s, AsteroidRows asteroids, double& dr, double& dv) {
  double body[6] = {0.0, 0.0, 0.0, 0.0, 0.0, 0.0};
  int flag = 0;
  body_state(flag, body, id, s.epoch, asteroids);
  const double ship[6] = {s.r[0], s.r[1], s.r[2], s.v[0], s.v[1], s.v[2]};
  get_error_shipandstar(ship, body, dr, dv);
}

double max_turn_angle(int id, double vin) {
  const Planet p = planet(id);
  return 2.0 * std::asin(p.mu / (vin * vin * p.min_radius + p.mu));
}

}  // namespace kavren

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
  if (vin < kavren::kMinTurnSpeed || vout < kavren::kMinTurnSpeed) return false;
  const double dot = vinf_in[0] * vinf_out[0] + vinf_in[1] * vinf_out[1] + vinf_in[2] * vinf_out[2];
  angle = std::acos(dot / (vin * vout));
  max_angle = kavren::max_turn_angle(id, vin);
  return true;
}
