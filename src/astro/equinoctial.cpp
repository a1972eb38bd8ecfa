// Modified equinoctial elements (p, f, g, h, k, L): regular for circular and equatorial
// orbits, singular only for retrograde equatorial ones.
#include <cmath>

#include "astro/constants.h"
#include "astro/elements.h"
#include "astro/orbit_vectors.h"

using kavren::kPi;

void coe2ee(int& flag, double* ee, const double* coe, double mu) {
  flag = 0;
  const double a = coe[0], e = coe[1], i = coe[2], W = coe[3], w = coe[4], f = coe[5];
  // Written as a positive test so that a NaN anywhere refuses too.
  if (!(mu > 0.0 && a >= 0.0 && e >= 0.0 && 0.0 <= i && i <= kPi && -1.0 <= e * std::cos(f))) {
    return;
  }
  const double p = (e == 1.0) ? 2.0 * a : a * std::fabs(1.0 - e * e);
  const double tan_half_i = std::tan(i / 2.0);
  ee[0] = p;
  ee[1] = e * std::cos(w + W);
  ee[2] = e * std::sin(w + W);
  ee[3] = tan_half_i * std::cos(W);
  ee[4] = tan_half_i * std::sin(W);
  ee[5] = kavren::wrap_to_turn(W + w + f);
  flag = 1;
}

void ee2coe(int& flag, double* coe, const double* ee, double mu) {
  flag = 0;
  const double p = ee[0], fe = ee[1], ge = ee[2], he = ee[3], ke = ee[4], L = ee[5];
  if (mu <= 0.0 || p <= 0.0) return;
  const double e = std::sqrt(fe * fe + ge * ge);
  const double a = (e == 1.0) ? p * 0.5 : p / std::fabs(1.0 - e * e);
  const double tan_half_i = std::sqrt(he * he + ke * ke);
  const double i = 2.0 * std::atan(tan_half_i);
  double W, w, f;
  if (tan_half_i <= 0.0) {
    W = 0.0;
    if (e <= 0.0) {
      w = 0.0;
      f = L;
    } else {
      w = std::atan2(ge, fe);
      f = L - w;
    }
  } else {
    W = std::atan2(ke, he);
    if (e <= 0.0) {
      w = 0.0;
      f = L - W;
    } else {
      w = std::atan2(ge * he - fe * ke, fe * he + ge * ke);
      f = L - W - w;
    }
  }
  coe[0] = a;
  coe[1] = e;
  coe[2] = i;
  coe[3] = kavren::wrap_to_turn(W);
  coe[4] = kavren::wrap_to_turn(w);
  coe[5] = kavren::hyperbolic_range(kavren::wrap_to_turn(f), e);
  flag = 1;
}

void ee2rv(int& flag, double* rv, const double* ee, double mu) {
  flag = 0;
  const double p = ee[0], fe = ee[1], ge = ee[2], he = ee[3], ke = ee[4], L = ee[5];
  if (mu <= 0.0 || p <= 0.0) return;
  const double s2 = 1.0 + he * he + ke * ke;
  const double alpha2 = he * he - ke * ke;
  const double cL = std::cos(L), sL = std::sin(L);
  const double w = 1.0 + fe * cL + ge * sL;
  const double r = p / w;
  const double rs = r / s2;
  const double vs = (-1.0 / s2) * std::sqrt(mu / p);
  const double x = cL + alpha2 * cL + 2.0 * he * ke * sL;
  const double y = sL - alpha2 * sL + 2.0 * he * ke * cL;
  const double z = 2.0 * (he * sL - ke * cL);
  const double vx = sL + alpha2 * sL - 2.0 * he * ke * cL + ge - 2.0 * fe * he * ke + alpha2 * ge;
  const double vy = -cL + alpha2 * cL + 2.0 * he * ke * sL - fe + 2.0 * ge * he * ke + alpha2 * fe;
  const double vz = -2.0 * (he * cL + ke * sL + fe * he + ge * ke);
  rv[0] = rs * x;
  rv[1] = rs * y;
  rv[2] = rs * z;
  rv[3] = vs * vx;
  rv[4] = vs * vy;
  rv[5] = vs * vz;
  flag = 1;
}

void rv2ee(int& flag, double* ee, const double* rv, double mu) {
  flag = 0;
  if (mu <= 0.0) return;
  const kavren::OrbitGeometry g = kavren::orbit_geometry(rv, mu);
  const double* h_hat = g.h_hat;
  // p goes out before the retrograde test below; a refused state keeps it written.
  ee[0] = g.h * g.h / mu;
  const double den = 1.0 + h_hat[2];
  if (den <= 0.0) return;  // retrograde equatorial: h and k would be infinite
  const double he = -h_hat[1] / den;
  const double ke = h_hat[0] / den;
  // Equinoctial frame: f_hat and g_hat span the orbit plane, L is measured from f_hat.
  const double s2 = 1.0 + he * he + ke * ke;
  const double f_hat[3] = {(1.0 - ke * ke + he * he) / s2, 2.0 * he * ke / s2, -2.0 * ke / s2};
  const double g_hat[3] = {2.0 * he * ke / s2, (1.0 + ke * ke - he * he) / s2, 2.0 * he / s2};
  ee[1] = kavren::dot3(g.e_vec, f_hat);
  ee[2] = kavren::dot3(g.e_vec, g_hat);
  ee[3] = he;
  ee[4] = ke;
  ee[5] =
      kavren::wrap_to_turn(std::atan2(kavren::dot3(g.r_hat, g_hat), kavren::dot3(g.r_hat, f_hat)));
  flag = 1;
}
