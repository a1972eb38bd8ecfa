// Comparisons of a ship's state with the body it meets and of the two lines of one
// event. The kavren:: forms take the catalogue's rows.
#pragma once

#include "astro/ephemeris.h"
#include "records/records.h"

namespace kavren {

// Speed of the ship relative to body id at the state's epoch (km/s). A body whose
// ephemeris fails is taken at rest at the Sun.
double excess_speed(int id, const StateStruct& s, AsteroidRows asteroids);
// Distance (km) and velocity difference (km/s) between the ship and body id.
void state_error(int id, const StateStruct& s, AsteroidRows asteroids, double& dr, double& dv);
// The largest turn (rad) of the excess velocity a pass at planet id's minimum radius
// allows, at incoming excess speed vin (km/s).
double max_turn_angle(int id, double vin);

}  // namespace kavren

void get_error_2structs(StateStruct a, StateStruct b, double& dt, double& dr, double& dv,
                        double& dm);
void get_error_shipandstar(const double* rv1, const double* rv2, double& dr, double& dv);
// Turn angle of a flyby and the largest turn a pass at the minimum radius allows.
// False (outputs untouched) when either excess speed is below 0.001 km/s.
bool get_angle_2vinfs(int id, const double* vinf_in, const double* vinf_out, double& angle,
                      double& max_angle);
