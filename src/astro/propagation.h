// Two-body propagation of anomalies, longitudes and whole element sets.
// Units as the caller's gravitational parameter (km, s, km^3/s^2); radians.
#pragma once

// True anomaly after dt. For a parabola (e == 1) a holds the periapsis distance; an
// initial anomaly outside [-pi, pi] prints the one message of the toolkit.
double f0dt2ft(int& flag, double f0, double dt, double a, double e, double mu, int MaxIter,
               double epsilon);
// Time of flight from f0 to ft (ft >= f0).
double f0ft2dt(int& flag, double f0, double ft, double a, double e, double mu);
double L0dt2Lt(int& flag, double L0, double dt, const double* ee, double mu);
double L0Lt2dt(int& flag, double L0, double Lt, const double* ee, double mu);
void coe02coef(int& flag, double* coe_t, const double* coe0, double dt, double mu);
void rv02rvf(int& flag, double* rv_t, const double* rv0, double dt, double mu);
void ee02eef(int& flag, double* ee_t, const double* ee0, double dt, double mu);
