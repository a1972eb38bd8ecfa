// The bodies of the problem as the verifier sees them, for programs that plot results:
// the length unit and the planets' states from the verifier's own ephemeris.
#pragma once

namespace kavren {

constexpr double kKmPerAu = 149597870.691;  // km in one astronomical unit

// The state of planet `id` (-2 Venus, -3 or 0 the Earth, -4 Mars) at epoch `mjd`: x, y, z
// (km) and vx, vy, vz (km/s) about the Sun into rv. False, rv untouched, for any other id
// or an epoch at which the ephemeris fails.
bool planet_state(int id, double mjd, double* rv);

}  // namespace kavren
