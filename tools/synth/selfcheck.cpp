#include "synth/selfcheck.h"

#include <cmath>
#include <cstdio>
#include <initializer_list>

#include "astro/constants.h"
#include "astro/propagation.h"
#include "synth/lambert.h"
#include "synth/rng.h"

namespace synth {
namespace {

// Round trips: a random prograde orbit (ellipses and hyperbolas, inclined up to 30
// degrees) is propagated by Kepler's equation for a random time; the transfer between the
// two positions in that time must give back both velocities.
bool lambert_round_trips(std::ostream& out) {
  const double mu = kavren::kMuSun;
  Rng rng(20240611);
  int tried = 0, passed = 0;
  double worst = 0.0;
  while (tried < 300) {
    const double rn = rng.uniform(0.6, 3.0) * kavren::kAU;
    const double lon = rng.uniform(0.0, kavren::kTwoPi);
    const double lat = rng.uniform(-0.3, 0.3);
    const double r[3] = {rn * std::cos(lat) * std::cos(lon), rn * std::cos(lat) * std::sin(lon),
                         rn * std::sin(lat)};
    const double inc = rng.uniform(-0.5, 0.5);  // tilt of the plane about r
    const double vc = std::sqrt(mu / rn);
    const double speed = vc * rng.uniform(0.75, 1.6);  // above sqrt(2): hyperbolic
    const double radial = rng.uniform(-0.3, 0.3);
    // Prograde tangent: z cross r, tilted about r.
    const double t0[3] = {-std::sin(lon), std::cos(lon), 0.0};
    const double up[3] = {-std::sin(lat) * std::cos(lon), -std::sin(lat) * std::sin(lon),
                          std::cos(lat)};
    double rv0[6] = {r[0], r[1], r[2], 0, 0, 0};
    for (int k = 0; k < 3; ++k) {
      const double tangent = std::cos(inc) * t0[k] + std::sin(inc) * up[k];
      rv0[3 + k] = speed * (std::sqrt(1.0 - radial * radial) * tangent + radial * r[k] / rn);
    }
    const double energy = 0.5 * speed * speed - mu / rn;
    double tof = 0.0;
    if (energy < 0.0) {
      const double a = -mu / (2.0 * energy);
      tof = rng.uniform(0.05, 0.9) * kavren::kTwoPi * std::sqrt(a * a * a / mu);
    } else {
      tof = rng.uniform(5.0, 400.0) * 86400.0;
    }
    int flag = 1;
    double rv1[6];
    rv02rvf(flag, rv1, rv0, tof, mu);
    if (flag == 0) continue;
    // Skip transfers through (or next to) a half or whole revolution, where the plane is
    // not fixed by the two positions.
    const double n1 = std::sqrt(rv1[0] * rv1[0] + rv1[1] * rv1[1] + rv1[2] * rv1[2]);
    const double c[3] = {r[1] * rv1[2] - r[2] * rv1[1], r[2] * rv1[0] - r[0] * rv1[2],
                         r[0] * rv1[1] - r[1] * rv1[0]};
    const double sine = std::sqrt(c[0] * c[0] + c[1] * c[1] + c[2] * c[2]) / (rn * n1);
    if (sine < 0.05) continue;
    ++tried;
    double v1[3], v2[3];
    if (!lambert(rv0, rv1, tof, v1, v2)) continue;
    double err = 0.0;
    for (int k = 0; k < 3; ++k) {
      err = std::fmax(err, std::fabs(v1[k] - rv0[3 + k]));
      err = std::fmax(err, std::fabs(v2[k] - rv1[3 + k]));
    }
    worst = std::fmax(worst, err);
    if (err <= 1e-9) ++passed;
  }
  out << "Lambert round trips: " << passed << " of " << tried << " within 1e-9 km/s\n";
  if (passed != tried) {
    char line[80];
    std::snprintf(line, sizeof line, "largest velocity error %.3e km/s\n", worst);
    out << line;
  }
  return passed == tried;
}

// The Stumpff functions switch from their closed forms to series at |z| = 1e-3: both
// sides must agree there, and the known values at z = pi^2 and -pi^2 must hold.
bool stumpff_values(std::ostream& out) {
  bool ok = true;
  for (double z : {1e-3, -1e-3}) {
    const double above = z * (1.0 + 1e-12);  // closed form
    ok = ok && std::fabs(stumpff_c(above) - stumpff_c(z)) <= 1e-12;
    ok = ok && std::fabs(stumpff_s(above) - stumpff_s(z)) <= 1e-12;
  }
  const double pi = kavren::kPi;
  // sqrt(z) = pi: C = 2 / pi^2, S = 1 / pi^2.
  ok = ok && std::fabs(stumpff_c(pi * pi) - 2.0 / (pi * pi)) <= 1e-15;
  ok = ok && std::fabs(stumpff_s(pi * pi) - 1.0 / (pi * pi)) <= 1e-15;
  // sqrt(-z) = 1: C = cosh 1 - 1, S = sinh 1 - 1.
  ok = ok && std::fabs(stumpff_c(-1.0) - (std::cosh(1.0) - 1.0)) <= 1e-15;
  ok = ok && std::fabs(stumpff_s(-1.0) - (std::sinh(1.0) - 1.0)) <= 1e-15;
  out << "Stumpff functions: " << (ok ? "pass" : "FAIL") << "\n";
  return ok;
}

bool lambert_refusals(std::ostream& out) {
  const double r1[3] = {kavren::kAU, 0.0, 0.0};
  const double r2[3] = {0.0, 1.2 * kavren::kAU, 0.0};
  const double opposite[3] = {-1.5 * kavren::kAU, 0.0, 0.0};
  double v1[3], v2[3];
  const bool ok = !lambert(r1, r2, 0.0, v1, v2) && !lambert(r1, r2, -86400.0, v1, v2) &&
                  !lambert(r1, r1, 86400.0 * 100.0, v1, v2) &&
                  !lambert(r1, opposite, 86400.0 * 200.0, v1, v2) &&
                  lambert(r1, r2, 86400.0 * 100.0, v1, v2);
  out << "Lambert refusals: " << (ok ? "pass" : "FAIL") << "\n";
  return ok;
}

}  // namespace

bool self_check(std::ostream& out) {
  const bool a = lambert_round_trips(out);
  const bool b = stumpff_values(out);
  const bool c = lambert_refusals(out);
  return a && b && c;
}

}  // namespace synth
