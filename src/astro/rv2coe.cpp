#include <cmath>

#include "astro/elements.h"
#include "astro/orbit_vectors.h"

using kavren::kTwoPi;

void rv2coe(int& flag, double* coe, const double* rv, double mu) {
  flag = 0;
  const kavren::OrbitGeometry g = kavren::orbit_geometry(rv, mu);
  const double* h_hat = g.h_hat;
  const double e = kavren::norm3(g.e_vec);
  const double p = g.h * g.h / mu;
  // The semi-major axis is kept positive for hyperbolas; a parabola stores p/2.
  const double a = (e == 1.0) ? p * 0.5 : p / std::fabs(1.0 - e * e);
  const double i = std::acos(h_hat[2]);

  double W, w, f;
  const double node[3] = {-h_hat[1], h_hat[0], 0.0};
  if (node[0] != 0.0 || node[1] != 0.0) {
    W = std::atan2(h_hat[0], -h_hat[1]);
    const double u = kavren::signed_angle3(node, g.r_hat, h_hat);
    if (e > 0.0) {
      w = kavren::signed_angle3(node, g.e_vec, h_hat);
      f = u - w;
    } else {
      w = 0.0;
      f = u;
    }
  } else {
    // Exactly equatorial: no node, angles measured from the x axis.
    W = 0.0;
    if (e > 0.0) {
      w = std::atan2(h_hat[2] * (g.e_vec[1] / e), g.e_vec[0] / e);
      f = kavren::signed_angle3(g.e_vec, g.r_hat, h_hat);
    } else {
      w = 0.0;
      f = std::atan2(h_hat[2] * g.r_hat[1], g.r_hat[0]);
    }
  }

  coe[0] = a;
  coe[1] = e;
  coe[2] = i;
  coe[3] = kavren::wrap_to_turn(W);
  coe[4] = kavren::wrap_to_turn(w);
  // Only reduced, not wrapped: a point before periapsis keeps its negative anomaly.
  coe[5] = kavren::hyperbolic_range(std::fmod(f, kTwoPi), e);
  flag = 1;
}
