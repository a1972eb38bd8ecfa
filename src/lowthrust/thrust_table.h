// Thrust tables of the burning arcs: n epochs (canonical time) with the thrust vector
// (N) at each, interpolated piecewise by cubic Lagrange polynomials through the four
// points around t.
#pragma once

#include <vector>

namespace kavren {

// A line reference or a point count held as a double, truncated toward zero. Defined for
// every double: NaN gives 0, values beyond the int range give INT_MIN or INT_MAX.
int truncate_to_int(double value);

struct ThrustTable {
  long long n = 0;  // points; a negative count in a parameter block is an empty table
  const double* times = nullptr;
  const double* u[3] = {nullptr, nullptr, nullptr};
  // Times finite and strictly increasing: t is located by bisection, else by a scan
  // (both find the same interval).
  bool ordered = false;
};

// The table of a LowThrustDy parameter block [line ref, N, N times, N ux, N uy, N uz].
// `check_order` decides `ordered` (one pass over the times); without it the table is
// scanned.
ThrustTable thrust_table_of(const double* para, bool check_order);

// The first interval i (0 <= i < n-1) whose ends bracket t, or -1. `hint` is an
// interval found before (or -1): consecutive evaluations are close in time, so the
// interval is tried there first; the answer is the same as without it.
long long thrust_interval(const ThrustTable& table, double t, long long& hint);

// The thrust at t (N) into u; the interval is found only when the table needs it.
void interpolate_thrust(const ThrustTable& table, double t, long long& hint, double* u);

}  // namespace kavren

// Lagrange polynomial through (x[0..n], y[0..n]) at t.
double LagInterp(const double* x, const double* y, int n, double t);
// Piecewise Lagrange interpolation of degree `order` through the points around t.
double LagInterp(const std::vector<double>& x, const std::vector<double>& y, int order, double t);
