// Equations of motion of a ship in canonical units (LU = 1 AU, VU, TU = LU/VU, mu = 1).
// State: x, y, z, vx, vy, vz, m (kg). Both stop the run with Error101 (status 1) at the
// first evaluation closer than 0.3 AU to the Sun.
#pragma once

#include <cstdint>
#include <vector>

namespace kavren {
constexpr double kLU = 149597870.691;         // km
constexpr double kVU = 29.784691832592745;    // km/s
constexpr double kTU = 5022642.890912784;     // s
constexpr double kACC = 5.930083519670628e-06;  // km/s^2
// MJD to canonical time since the mission start.
inline double mjd_to_tu(double mjd) { return (mjd - 64328.0) * 86400.0 / 5022642.890912784; }

// A line reference or a point count held as a double, truncated toward zero. Defined for
// every double: NaN gives 0, values beyond the int range give INT_MIN or INT_MAX.
int truncate_to_int(double value);

// Number of TwoBodyDy and LowThrustDy evaluations made by this thread since the last reset.
std::uint64_t derivative_evaluations();
void reset_derivative_evaluations();

// Vouches, while alive, for a LowThrustDy parameter block whose times have been found
// finite and strictly increasing (checked once, here): LowThrustDy then locates t in that
// block by bisection instead of scanning, with the same interval as the scan. Any other
// block is scanned. The block must not change while the object lives; objects nest.
class OrderedThrustTable {
 public:
  explicit OrderedThrustTable(const double* para);
  ~OrderedThrustTable();
  OrderedThrustTable(const OrderedThrustTable&) = delete;
  OrderedThrustTable& operator=(const OrderedThrustTable&) = delete;
  bool ordered() const { return ordered_; }

 private:
  const double* previous_ = nullptr;
  bool ordered_ = false;
};
}  // namespace kavren

// Sun gravity only. para[0]: line reference for Error101.
void TwoBodyDy(double t, const double* y, double* dy, const double* para);
// Sun gravity plus interpolated thrust. para: [line ref, N, N times (TU), N ux, N uy, N uz].
void LowThrustDy(double t, const double* y, double* dy, const double* para);
// Lagrange polynomial through (x[0..n], y[0..n]) at t.
double LagInterp(const double* x, const double* y, int n, double t);
// Piecewise Lagrange interpolation of degree `order` through the points around t.
double LagInterp(const std::vector<double>& x, const std::vector<double>& y, int order, double t);
