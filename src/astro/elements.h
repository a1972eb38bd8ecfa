// Conversions between six-number state descriptions (arrays of 6 doubles):
//   rv  : x, y, z, vx, vy, vz
//   coe : a, e, i, RAAN, argument of periapsis, true anomaly (a > 0 also for
//         hyperbolas; p/2 for a parabola)
//   ee  : modified equinoctial p, f, g, h, k, L
//   soe : a, argument of latitude, i, e*cos(omega), e*sin(omega), RAAN
// The flag is 0 on entry and 1 once the output is written; a refused input leaves the
// output untouched, except that rv2ee writes p before it refuses a retrograde equatorial
// state. Outputs must not alias inputs.
#pragma once

void coe2rv(int& flag, double* rv, const double* coe, double mu);
void rv2coe(int& flag, double* coe, const double* rv, double mu);
void coe2ee(int& flag, double* ee, const double* coe, double mu);
void ee2coe(int& flag, double* coe, const double* ee, double mu);
void ee2rv(int& flag, double* rv, const double* ee, double mu);
void rv2ee(int& flag, double* ee, const double* rv, double mu);
void coe2soe(const double* coe, double* soe);
void soe2coe(const double* soe, double* coe);
