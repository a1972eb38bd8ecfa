#include <cmath>

#include "astro/elements.h"

void coe2rv(int& flag, double* rv, const double* coe, double mu) {
  flag = 0;
  const double a = coe[0], e = coe[1], i = coe[2], W = coe[3], w = coe[4], f = coe[5];
  // A parabola stores its periapsis distance p/2 in the first element.
  const double p = (e == 1.0) ? 2.0 * a : a * std::fabs(1.0 - e * e);
  const double cW = std::cos(W), sW = std::sin(W);
  const double cw = std::cos(w), sw = std::sin(w);
  const double ci = std::cos(i), si = std::sin(i);
  const double P[3] = {cW * cw - sW * sw * ci, sW * cw + cW * sw * ci, sw * si};
  const double Q[3] = {-cW * sw - sW * cw * ci, -sW * sw + cW * cw * ci, cw * si};
  const double cf = std::cos(f), sf = std::sin(f);
  const double den = 1.0 + e * cf;
  // Beyond a hyperbola's asymptote the radius is meaningless: a huge sentinel instead.
  const double r = den > 0.0 ? p / den : 1.0e308;
  const double vscale = std::sqrt(mu / p);
  for (int k = 0; k < 3; ++k) {
    rv[k] = r * (cf * P[k] + sf * Q[k]);
    rv[3 + k] = vscale * (-sf * P[k] + (e + cf) * Q[k]);
  }
  flag = 1;
}
