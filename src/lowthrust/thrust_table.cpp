#include "lowthrust/thrust_table.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr int kThrustOrder = 3;  // cubic through four table points

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

}  // namespace

namespace kavren {

int truncate_to_int(double value) {
  if (std::isnan(value)) return 0;
  if (value >= 2147483648.0) return 2147483647;
  if (value <= -2147483649.0) return -2147483647 - 1;
  return static_cast<int>(value);
}

ThrustTable thrust_table_of(const double* para, bool check_order) {
  ThrustTable table;
  const int n = truncate_to_int(para[1]);
  table.n = n > 0 ? n : 0;
  table.times = para + 2;
  for (int axis = 0; axis < 3; ++axis) table.u[axis] = table.times + (axis + 1) * table.n;
  table.ordered = check_order && finite_and_increasing(table.times, table.n);
  return table;
}

long long thrust_interval(const ThrustTable& table, double t, long long& hint) {
  const double* x = table.times;
  const long long n = table.n;
  if (!table.ordered) return scan_interval(x, n, t);
  // The intervals that bracket t form one run (see bisect_interval): an interval that
  // brackets while the one before it does not is the first.
  for (long long i = hint; i >= 0 && i <= hint + 1 && i + 1 < n; ++i) {
    if (brackets(x, i, t) && (i == 0 || !brackets(x, i - 1, t))) {
      hint = i;
      return i;
    }
  }
  const long long i = bisect_interval(x, n, t);
  if (i >= 0) hint = i;
  return i;
}

void interpolate_thrust(const ThrustTable& table, double t, long long& hint, double* u) {
  long long interval = -1;
  if (table.n > kThrustOrder + 1) interval = thrust_interval(table, t, hint);
  piecewise(table.times, table.u, 3, table.n, kThrustOrder, t, interval, u);
}

}  // namespace kavren

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
