// Equations of motion of a ship in canonical units (LU = 1 AU, VU, TU = LU/VU, mu = 1).
// State: x, y, z, vx, vy, vz, m (kg). Both stop the run with Error101 (status 1) at the
// first evaluation closer than 0.3 AU to the Sun.
#pragma once

#include <vector>

namespace kavren {
constexpr double kLU = 149597870.691;         // km
constexpr double kVU = 29.784691832592745;    // km/s
constexpr double kTU = 5022642.890912784;     // s
constexpr double kACC = 5.930083519670628e-06;  // km/s^2
// MJD to canonical time since the mission start.
inline double mjd_to_tu(double mjd) { return (mjd - 64328.0) * 86400.0 / 5022642.890912784; }
}  // namespace kavren

// Sun gravity only. para[0]: line reference for Error101.
void TwoBodyDy(double t, const double* y, double* dy, const double* para);
// Sun gravity plus interpolated thrust. para: [line ref, N, N times (TU), N ux, N uy, N uz].
void LowThrustDy(double t, const double* y, double* dy, const double* para);
// Lagrange polynomial through (x[0..n], y[0..n]) at t.
double LagInterp(const double* x, const double* y, int n, double t);
// Piecewise Lagrange interpolation of degree `order` through the points around t.
double LagInterp(const std::vector<double>& x, const std::vector<double>& y, int order, double t);
