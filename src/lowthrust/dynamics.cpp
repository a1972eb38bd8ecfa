#include "lowthrust/dynamics.h"

#include <algorithm>
#include <cmath>
#include <iostream>

#include "records/output.h"
#include "records/termination.h"

namespace {

constexpr double kMinSunDistance = 0.3;  // LU
constexpr double kThrustCap = 0.6;       // N
constexpr int kThrustOrder = 3;          // cubic through four table points

thread_local std::uint64_t t_evaluations = 0;
thread_local const double* t_ordered_block = nullptr;

// The thrust table's point count; a negative count is an empty table.
long long table_size(const double* para) {
  const int n = kavren::truncate_to_int(para[1]);
  return n > 0 ? n : 0;
}

// t lies in [x[i], x[i+1]], either end included, in the form the table scan uses.
inline bool brackets(const double* x, long long i, double t) {
  return (x[i] - t) * (x[i + 1] - t) <= 0.0;
}

// First interval i (0 <= i < n-1) that brackets t, or -1.
long long scan_interval(const double* x, long long n, double t) {
  for (long long i = 0; i + 1 < n; ++i) {
    if (brackets(x, i, t)) return i;
  }
  return -1;
}

// The interval scan_interval returns, found by bisection; x must be finite and strictly
// increasing. With j the first node not below t, the differences x[i] - t are negative
// before j and non-negative from j on, and non-decreasing throughout, so:
//  - for intervals wholly below t the product is positive and shrinks towards j; only
//    an underflow to zero makes it bracket, and then from some i up to j-2 onwards;
//  - the interval (j-1, j) brackets unless (-inf) * 0 gives NaN;
//  - for intervals from j on the product grows, so only the interval j can bracket
//    when (j-1, j) does not.
// Each candidate is decided with the same product as the scan.
long long bisect_interval(const double* x, long long n, double t) {
  if (n < 2 || !std::isfinite(t)) return -1;  // every product is then NaN or +inf
  const long long j = std::lower_bound(x, x + n, t) - x;
  if (j >= 2 && brackets(x, j - 2, t)) {
    long long lo = 0;
    long long hi = j - 2;
    while (lo < hi) {
      const long long mid = lo + (hi - lo) / 2;
      if (brackets(x, mid, t)) {
        hi = mid;
      } else {
        lo = mid + 1;
      }
    }
    return lo;
  }
  if (j >= 1 && j <= n - 1 && brackets(x, j - 1, t)) return j - 1;
  if (j <= n - 2 && brackets(x, j, t)) return j;
  return -1;
}

bool finite_and_increasing(const double* x, long long n) {
  for (long long i = 0; i < n; ++i) {
    if (!std::isfinite(x[i])) return false;
    if (i + 1 < n && !(x[i] < x[i + 1])) return false;
  }
  return true;
}

// Lagrange polynomial through (x[0..n], ys[c][0..n]) at t for `count` ordinate sets
// sharing the abscissae. Each set gets exactly the sum of the single-set form: the
// product of each term depends only on x and t.
void lagrange(const double* x, const double* const* ys, int count, long long n, double t,
              double* out) {
  if (n < 1) {
    for (int c = 0; c < count; ++c) out[c] = ys[c][0];
    return;
  }
  if (n == 1) {
    for (int c = 0; c < count; ++c) {
      out[c] = ((t - x[1]) * ys[c][0] - (t - x[0]) * ys[c][1]) / (x[0] - x[1]);
    }
    return;
  }
  for (int c = 0; c < count; ++c) out[c] = 0.0;
  for (long long j = 0; j <= n; ++j) {
    double prod = 1.0;
    for (long long k = 0; k <= n; ++k) {
      if (k != j) prod *= (t - x[k]) / (x[j] - x[k]);
    }
    for (int c = 0; c < count; ++c) out[c] += ys[c][j] * prod;
  }
}

// Two doubles side by side: element-wise IEEE arithmetic, each lane rounded exactly as
// the scalar operation, so the pairs below give the scalar form's bits at about half the
// cost of its divisions.
typedef double Pair __attribute__((vector_size(16)));

// The cubic of `lagrange` for four points and three ordinate sets, operation for
// operation: the twelve quotients (t - x[k]) / (x[j] - x[k]) taken two at a time, each
// product formed from 1.0 in increasing k, each sum from 0.0 in increasing j.
void cubic3(const double* x, const double* const* ys, double t, double* out) {
  const Pair n01 = {t - x[0], t - x[1]};
  const Pair n23 = {t - x[2], t - x[3]};
  // Row j holds the quotients for k != j in increasing k.
  const Pair a = Pair{t - x[1], t - x[2]} / Pair{x[0] - x[1], x[0] - x[2]};  // j=0: k=1,2
  const Pair b = Pair{t - x[3], t - x[0]} / Pair{x[0] - x[3], x[1] - x[0]};  // j=0: k=3; j=1: k=0
  const Pair c = n23 / Pair{x[1] - x[2], x[1] - x[3]};                       // j=1: k=2,3
  const Pair d = n01 / Pair{x[2] - x[0], x[2] - x[1]};                       // j=2: k=0,1
  const Pair e = Pair{t - x[3], t - x[0]} / Pair{x[2] - x[3], x[3] - x[0]};  // j=2: k=3; j=3: k=0
  const Pair f = Pair{t - x[1], t - x[2]} / Pair{x[3] - x[1], x[3] - x[2]};  // j=3: k=1,2
  double prod[4];
  prod[0] = ((1.0 * a[0]) * a[1]) * b[0];
  prod[1] = ((1.0 * b[1]) * c[0]) * c[1];
  prod[2] = ((1.0 * d[0]) * d[1]) * e[0];
  prod[3] = ((1.0 * e[1]) * f[0]) * f[1];
  Pair xy = {0.0, 0.0};
  double z = 0.0;
  for (int j = 0; j < 4; ++j) {
    xy += Pair{ys[0][j], ys[1][j]} * Pair{prod[j], prod[j]};
    z += ys[2][j] * prod[j];
  }
  out[0] = xy[0];
  out[1] = xy[1];
  out[2] = z;
}

// Piecewise interpolation of degree p over a table of n points; `interval` is the first
// bracketing interval (or -1) and is consulted only when the table has more than p+1
// points. An empty table interpolates to 0.
void piecewise(const double* x, const double* const* ys, int count, long long n, long long p,
               double t, long long interval, double* out) {
  if (n <= 0) {
    for (int c = 0; c < count; ++c) out[c] = 0.0;
    return;
  }
  if (n <= p + 1) {
    lagrange(x, ys, count, n - 1, t, out);
    return;
  }
  // Outside the table the last p+1 points are used, also before its first time.
  long long s = interval >= 0 ? interval - p / 2 : n - 1 - p;
  if (s > n - 1 - p) s = n - 1 - p;
  if (s < 0) s = 0;
  const double* shifted[3];
  for (int c = 0; c < count; ++c) shifted[c] = ys[c] + s;
  if (p == 3 && count == 3) {
    cubic3(x + s, shifted, t, out);
    return;
  }
  lagrange(x + s, shifted, count, p, t, out);
}

[[noreturn]] void error101(long long first, long long second) {
  kavren::out() << "Error101. Position Error between line " << first << " and line " << second
            << ": The distance to the Sun of the mining ship is less than 0.3 AU." << std::endl;
  kavren::end_run(1);
}

}  // namespace

namespace kavren {

int truncate_to_int(double value) {
  if (std::isnan(value)) return 0;
  if (value >= 2147483648.0) return 2147483647;
  if (value <= -2147483649.0) return -2147483647 - 1;
  return static_cast<int>(value);
}

std::uint64_t derivative_evaluations() { return t_evaluations; }
void reset_derivative_evaluations() { t_evaluations = 0; }

OrderedThrustTable::OrderedThrustTable(const double* para) {
  ordered_ = finite_and_increasing(para + 2, table_size(para));
  if (ordered_) {
    previous_ = t_ordered_block;
    t_ordered_block = para;
  }
}

OrderedThrustTable::~OrderedThrustTable() {
  if (ordered_) t_ordered_block = previous_;
}

}  // namespace kavren

void TwoBodyDy(double t, const double* y, double* dy, const double* para) {
  (void)t;
  ++t_evaluations;
  dy[0] = y[3];
  dy[1] = y[4];
  dy[2] = y[5];
  const double r = std::sqrt(y[0] * y[0] + y[1] * y[1] + y[2] * y[2]);
  if (r < kMinSunDistance) {
    // Computed in 64 bits: a reference near INT_MAX must not overflow.
    const long long line = kavren::truncate_to_int(para[0]);
    error101(line + 1, line + 2);
  }
  for (int i = 0; i < 3; ++i) dy[3 + i] = ((-y[i] / r) / r) / r;
  dy[6] = 0.0;
}

void LowThrustDy(double t, const double* y, double* dy, const double* para) {
  ++t_evaluations;
  dy[0] = y[3];
  dy[1] = y[4];
  dy[2] = y[5];

  // The table is read where it lies in the block: times, then the x, y, z thrusts.
  const long long n = table_size(para);
  const double* times = para + 2;
  const double* thrust[3] = {times + n, times + 2 * n, times + 3 * n};
  const bool ordered = para == t_ordered_block;
  long long interval = -1;
  if (n > kThrustOrder + 1) {
    interval = ordered ? bisect_interval(times, n, t) : scan_interval(times, n, t);
  }
  double u[3];
  piecewise(times, thrust, 3, n, kThrustOrder, t, interval, u);

  // Interpolation may overshoot between table points; the engine never gives more.
  double u_norm = std::sqrt(u[0] * u[0] + u[1] * u[1] + u[2] * u[2]);
  if (u_norm > kThrustCap) {
    const double factor = kThrustCap / u_norm;
    for (double& component : u) component = component * factor;
    u_norm = kThrustCap;
  }

  const double r = std::sqrt(y[0] * y[0] + y[1] * y[1] + y[2] * y[2]);
  if (r < kMinSunDistance) {
    // The lines named are those around t in the table; the second is offset by the
    // table's length. All in 64 bits so that no reference or count can overflow.
    const long long line = kavren::truncate_to_int(para[0]);
    const long long i = ordered ? bisect_interval(times, n, t) : scan_interval(times, n, t);
    if (i >= 0) error101(line + i + 1, line + i + n);
    error101(line + 1, line + n);
  }

  // dy[3+i] = ((u_i * 0.001) / m) / 5.930083519670628e-06 - ((y_i / r) / r) / r,
  // x and y as a pair, z alone.
  const double m = y[6];
  const Pair mm = {m, m};
  const Pair rr = {r, r};
  const Pair acc = ((Pair{u[0], u[1]} * 0.001) / mm) / 5.930083519670628e-06 -
                   ((Pair{y[0], y[1]} / rr) / rr) / rr;
  dy[3] = acc[0];
  dy[4] = acc[1];
  dy[5] = ((u[2] * 0.001) / m) / 5.930083519670628e-06 - ((y[2] / r) / r) / r;
  dy[6] = ((-u_norm * 0.001 / 4000.0) / 0.00980665) * 5022642.890912784;
}

double LagInterp(const double* x, const double* y, int n, double t) {
  double result = 0.0;
  lagrange(x, &y, 1, n, t, &result);
  return result;
}

double LagInterp(const std::vector<double>& x, const std::vector<double>& y, int order, double t) {
  // Only the points present in both vectors take part; a negative order counts as 0.
  const long long n = static_cast<long long>(std::min(x.size(), y.size()));
  const long long p = order > 0 ? order : 0;
  long long interval = -1;
  if (n > p + 1) interval = scan_interval(x.data(), n, t);
  double result = 0.0;
  const double* ys = y.data();
  piecewise(x.data(), &ys, 1, n, p, t, interval, &result);
  return result;
}
