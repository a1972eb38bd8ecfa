#include "lowthrust/rkf78_coefficients.h"

#include <cmath>
#include <cstddef>

namespace RK {

// Fehlberg's 7(8) pair (13 stages). Stored as the exact fractions so that every entry is
// the correctly rounded double of its rational value.
const double RKFa[13] = {0.0,       2.0 / 27.0, 1.0 / 9.0, 1.0 / 6.0, 5.0 / 12.0,
                         1.0 / 2.0, 5.0 / 6.0,  1.0 / 6.0, 2.0 / 3.0, 1.0 / 3.0,
                         1.0,       0.0,        1.0};

const double RKFb[13][12] = {
    {0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0},
    {2.0 / 27.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0},
    {1.0 / 36.0, 1.0 / 12.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0},
    {1.0 / 24.0, 0.0, 1.0 / 8.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0},
    {5.0 / 12.0, 0.0, -25.0 / 16.0, 25.0 / 16.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0},
    {1.0 / 20.0, 0.0, 0.0, 1.0 / 4.0, 1.0 / 5.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0},
    {-25.0 / 108.0, 0.0, 0.0, 125.0 / 108.0, -65.0 / 27.0, 125.0 / 54.0, 0.0, 0.0, 0.0, 0.0, 0.0,
     0.0},
    {31.0 / 300.0, 0.0, 0.0, 0.0, 61.0 / 225.0, -2.0 / 9.0, 13.0 / 900.0, 0.0, 0.0, 0.0, 0.0, 0.0},
    {2.0, 0.0, 0.0, -53.0 / 6.0, 704.0 / 45.0, -107.0 / 9.0, 67.0 / 90.0, 3.0, 0.0, 0.0, 0.0, 0.0},
    {-91.0 / 108.0, 0.0, 0.0, 23.0 / 108.0, -976.0 / 135.0, 311.0 / 54.0, -19.0 / 60.0, 17.0 / 6.0,
     -1.0 / 12.0, 0.0, 0.0, 0.0},
    {2383.0 / 4100.0, 0.0, 0.0, -341.0 / 164.0, 4496.0 / 1025.0, -301.0 / 82.0, 2133.0 / 4100.0,
     45.0 / 82.0, 45.0 / 164.0, 18.0 / 41.0, 0.0, 0.0},
    {3.0 / 205.0, 0.0, 0.0, 0.0, 0.0, -6.0 / 41.0, -3.0 / 205.0, -3.0 / 41.0, 3.0 / 41.0,
     6.0 / 41.0, 0.0, 0.0},
    {-1777.0 / 4100.0, 0.0, 0.0, -341.0 / 164.0, 4496.0 / 1025.0, -289.0 / 82.0, 2193.0 / 4100.0,
     51.0 / 82.0, 33.0 / 164.0, 12.0 / 41.0, 0.0, 1.0},
};

// Eighth-order weights: the step advances with the higher-order solution.
const double RKFc[13] = {0.0,          0.0,          0.0,         0.0,         0.0,
                         34.0 / 105.0, 9.0 / 35.0,   9.0 / 35.0,  9.0 / 280.0, 9.0 / 280.0,
                         0.0,          41.0 / 840.0, 41.0 / 840.0};

double Max(double a, double b) {
  return a <= b ? b : a;
}
double Min(double a, double b) {
  return b <= a ? b : a;
}

double CopySign(double a, double b) {
  if ((b >= 0.0 && a <= 0.0) || (b < 0.0 && a >= 0.0)) return -a;
  return a;
}

int CopySign(int a, int b) {
  // abs(INT_MIN) does not exist; it is taken as INT_MAX so that the result stays defined.
  const int magnitude = a >= 0 ? a : (a == -2147483647 - 1 ? 2147483647 : -a);
  return b >= 0 ? magnitude : -magnitude;
}

// An empty array has no element: the result is the identity of the reduction
// (-inf for the largest, +inf for the smallest).
double ArrayMax(const double* a, int n) {
  if (n < 1) return -HUGE_VAL;
  double m = a[0];
  for (int i = 1; i < n; ++i) m = Max(m, a[i]);
  return m;
}

double ArrayMin(const double* a, int n) {
  if (n < 1) return HUGE_VAL;
  double m = a[0];
  for (int i = 1; i < n; ++i) m = Min(m, a[i]);
  return m;
}

double RKF78ErrorTerm(int k, int dim, const double* K) {
  const std::ptrdiff_t d = dim;
  // The stages with zero weight still enter, so that a non-finite stage reaches the
  // estimate and forces a rejection instead of slipping through.
  double z = 0.0;
  for (std::ptrdiff_t j = 1; j <= 9; ++j) z += 0.0 * K[j * d + k];
  return kRKF78ErrorWeight * (K[k] + z + K[10 * d + k] - K[11 * d + k] - K[12 * d + k]);
}

}  // namespace RK
