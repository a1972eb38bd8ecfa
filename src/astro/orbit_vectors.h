// Small vector helpers and the angular-momentum / eccentricity-vector geometry shared by
// the conversions out of a Cartesian state.
#pragma once

#include <cmath>

#include "astro/constants.h"

namespace kavren {

inline double dot3(const double* a, const double* b) {
  return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

inline void cross3(const double* a, const double* b, double* c) {
  c[0] = a[1] * b[2] - a[2] * b[1];
  c[1] = a[2] * b[0] - a[0] * b[2];
  c[2] = a[0] * b[1] - a[1] * b[0];
}

inline double norm3(const double* a) {
  return std::sqrt(a[0] * a[0] + a[1] * a[1] + a[2] * a[2]);
}

// Signed angle from u to w about the unit axis n (u and w need not be unit vectors).
inline double signed_angle3(const double* u, const double* w, const double* n) {
  double c[3];
  cross3(u, w, c);
  return std::atan2(dot3(n, c), dot3(u, w));
}

// fmod to one turn, then into [0, 2*pi).
inline double wrap_to_turn(double x) {
  double r = std::fmod(x, kTwoPi);
  if (r < 0.0) r += kTwoPi;
  return r;
}

// Geometry of a Cartesian state: unit position, unit orbit normal, specific angular
// momentum and eccentricity vector.
struct OrbitGeometry {
  double r_hat[3];
  double h_hat[3];
  double h;
  double e_vec[3];
};

inline OrbitGeometry orbit_geometry(const double* rv, double mu) {
  OrbitGeometry g;
  const double r = norm3(rv);
  const double v = norm3(rv + 3);
  const double v_hat[3] = {rv[3] / v, rv[4] / v, rv[5] / v};
  for (int k = 0; k < 3; ++k) g.r_hat[k] = rv[k] / r;
  double c[3];
  cross3(g.r_hat, v_hat, c);
  const double c_norm = norm3(c);
  for (int k = 0; k < 3; ++k) g.h_hat[k] = c[k] / c_norm;
  g.h = r * v * c_norm;
  double vxh[3];
  cross3(v_hat, g.h_hat, vxh);
  const double scale = v * g.h / mu;
  for (int k = 0; k < 3; ++k) g.e_vec[k] = scale * vxh[k] - g.r_hat[k];
  return g;
}

// For e >= 1 only: moves a true anomaly beyond an asymptote by one turn, so that it lies
// on the branch of the hyperbola where possible.
inline double hyperbolic_range(double f, double e) {
  if (e >= 1.0) {
    const double delta = std::acos(1.0 / e);
    if (f > kPi - delta) {
      f -= kTwoPi;
    } else if (f < delta - kPi) {
      f += kTwoPi;
    }
  }
  return f;
}

}  // namespace kavren
