// Non-singular elements for near-circular orbits: (a, u = omega + f, i, e cos omega,
// e sin omega, RAAN).
#include <cmath>

#include "astro/constants.h"
#include "astro/elements.h"

using kavren::kTwoPi;

void coe2soe(const double* coe, double* soe) {
  const double a = coe[0], e = coe[1], i = coe[2], W = coe[3], w = coe[4], f = coe[5];
  soe[0] = a;
  soe[1] = w + f;
  soe[2] = i;
  soe[3] = e * std::cos(w);
  soe[4] = e * std::sin(w);
  soe[5] = W;
}

// Angles are only reduced by fmod here, so RAAN and f may come out negative.
void soe2coe(const double* soe, double* coe) {
  const double a = soe[0], u = soe[1], i = soe[2], ecw = soe[3], esw = soe[4], W = soe[5];
  const double w0 = std::atan2(esw, ecw);
  coe[0] = a;
  coe[1] = std::sqrt(ecw * ecw + esw * esw);
  coe[2] = i;
  coe[3] = std::fmod(W, kTwoPi);
  coe[4] = std::fmod(w0, kTwoPi);
  coe[5] = std::fmod(u - w0, kTwoPi);
}
