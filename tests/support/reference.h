// Independent references for the integration: exact two-body motion, a local-error order
// meter, and whole burning arcs recomputed without the library (Kepler motion on coasts, a
// fixed-step RK4 with Richardson extrapolation on thrust phases).
#pragma once

#include <functional>
#include <vector>

namespace kavren::test {

// The circular orbit of radius 1 about a unit mass (period 2 pi), inclined, at time t:
// x, y, z, vx, vy, vz and a mass of 1000.
void circular_orbit(double t, double* y);

// Euclidean distance of the first n components.
double distance(const double* a, const double* b, int n);

// log2(e(h) / e(h/2)) for h = h0, h0/2, ...: `halvings` slopes of the local error e.
std::vector<double> local_error_slopes(const std::function<double(double)>& error, double h0,
                                       int halvings);

// Two-body motion about a unit mass over dt by Lagrange f and g, the change of eccentric
// anomaly solved by Newton iteration in long double (ellipses only).
void kepler(const double* rv0, double dt, double* rv);

// Specific energy and angular momentum (mu = 1).
double energy(const double* rv);
void angular_momentum(const double* rv, double* h);

// A line of a burning arc: its epoch (MJD) and thrust (N).
struct ArcLine {
  double epoch;
  double u[3];
};

// The state at tf (MJD) of a ship that leaves `start` (km, km/s, kg) at t0 (MJD) and flies
// the arc's lines: thrust phases open with a zero line at the epoch of their first table
// line and close with a zero line at the epoch of their last; between phases and after
// the last the ship coasts. Thrust is the cubic through the four table points around t
// (all points when there are at most four), capped at 0.6 N; specific impulse 4000 s.
void reference_arc(const double* start, double t0, double tf, const std::vector<ArcLine>& lines,
                   double* end);

}  // namespace kavren::test
