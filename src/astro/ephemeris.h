// States of the planets and catalogue asteroids (Keplerian about the Sun, elements at
// MJD 64328) and the comparisons the event checks make against them.
// Body identifiers: -4 Mars, -3 and 0 the Earth, -2 Venus, 1..60000 catalogue asteroid.
#pragma once

#include "records/records.h"

// State of body id at epoch t (MJD) into rv[6]. Flag 0 and rv untouched when the
// Kepler solution fails, when id is no known body, or when the catalogue is not loaded.
void getrv_stats_asteroids(int& flag, double* rv, int id, double t);
// Keplerian state after dt (s) from ele0 = (a, e, i, RAAN, omega, M0).
void Ele0dt2rvt(int& flag, double* rv, const double* ele0, double mu, double dt, int MaxIter,
                double epsilon);
// Speed of the ship relative to body id at the state's epoch (km/s).
double get_vinf(int id, StateStruct s);
// Distance (km) and velocity difference (km/s) between the ship and body id.
void err_state_ship(int id, StateStruct s, double& dr, double& dv);
void get_error_2structs(StateStruct a, StateStruct b, double& dt, double& dr, double& dv,
                        double& dm);
void get_error_shipandstar(const double* rv1, const double* rv2, double& dr, double& dv);
// Turn angle of a flyby and the largest turn a pass at the minimum radius allows.
// False (outputs untouched) when either excess speed is below 0.001 km/s.
bool get_angle_2vinfs(int id, const double* vinf_in, const double* vinf_out, double& angle,
                      double& max_angle);
