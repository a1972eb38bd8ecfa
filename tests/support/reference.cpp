#include "support/reference.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "support/two_body.h"

namespace kavren::test {

namespace {

// Canonical units of the integration: lengths in AU, the Sun's parameter 1.
const double kTimeUnit = std::sqrt(kAU * kAU * kAU / kMuSun);  // s
const double kSpeedUnit = kAU / kTimeUnit;                     // km/s
constexpr double kDay = 86400.0;                               // s
constexpr double kMissionStart = 64328.0;                      // MJD
constexpr double kThrustCap = 0.6;                             // N
constexpr double kExhaustSpeed = 4000.0 * 0.00980665;          // km/s

double tu(double mjd) {
  return (mjd - kMissionStart) * kDay / kTimeUnit;
}

// Thrust (N) at t (TU) from a table of n points.
void thrust_at(const std::vector<double>& x, const std::vector<std::array<double, 3>>& u, double t,
               double* out) {
  const int n = static_cast<int>(x.size());
  int first = 0, count = n;
  if (n > 4) {
    int i = 0;
    while (i < n - 1 && (x[i] - t) * (x[i + 1] - t) > 0.0) ++i;
    first = i < n - 1 ? std::clamp(i - 1, 0, n - 4) : n - 4;
    count = 4;
  }
  for (int axis = 0; axis < 3; ++axis) {
    double sum = 0.0;
    for (int j = first; j < first + count; ++j) {
      double weight = 1.0;
      for (int k = first; k < first + count; ++k) {
        if (k != j) weight *= (t - x[k]) / (x[j] - x[k]);
      }
      sum += weight * u[j][axis];
    }
    out[axis] = sum;
  }
  const double norm = std::sqrt(out[0] * out[0] + out[1] * out[1] + out[2] * out[2]);
  if (norm > kThrustCap) {
    for (int axis = 0; axis < 3; ++axis) out[axis] *= kThrustCap / norm;
  }
}

// Derivatives in canonical units, thrust in N, mass in kg.
void thrust_dynamics(const std::vector<double>& x, const std::vector<std::array<double, 3>>& u,
                     double t, const double* y, double* dy) {
  double f[3];
  thrust_at(x, u, t, f);
  const double r = std::sqrt(y[0] * y[0] + y[1] * y[1] + y[2] * y[2]);
  const double acceleration_unit = kSpeedUnit / kTimeUnit;  // km/s^2
  for (int i = 0; i < 3; ++i) {
    dy[i] = y[3 + i];
    dy[3 + i] = -y[i] / (r * r * r) + f[i] * 1e-3 / y[6] / acceleration_unit;
  }
  dy[6] = -std::sqrt(f[0] * f[0] + f[1] * f[1] + f[2] * f[2]) * 1e-3 / kExhaustSpeed * kTimeUnit;
}

// A thrust phase from its first to its last table point. Each table interval is taken in
// whole steps (the thrust is one cubic inside it), at two step sizes, and the fourth-order
// error is extrapolated away.
void thrust_phase(const std::vector<double>& x, const std::vector<std::array<double, 3>>& u,
                  double* y) {
  for (std::size_t i = 0; i + 1 < x.size(); ++i) {
    double coarse[7], fine[7];
    std::copy(y, y + 7, coarse);
    std::copy(y, y + 7, fine);
    const auto f = [&](double t, const double* z, double* dz) { thrust_dynamics(x, u, t, z, dz); };
    rk4<7>(f, x[i], x[i + 1] - x[i], 48, coarse);
    rk4<7>(f, x[i], x[i + 1] - x[i], 96, fine);
    for (int k = 0; k < 7; ++k) y[k] = fine[k] + (fine[k] - coarse[k]) / 15.0;
  }
}

void coast(double* y, double dt) {
  double rv[6];
  kepler(y, dt, rv);
  std::copy(rv, rv + 6, y);
}

}  // namespace

void circular_orbit(double t, double* y) {
  const double ci = std::cos(0.4), si = std::sin(0.4);
  const double c = std::cos(t), s = std::sin(t);
  const double y0[7] = {c, s * ci, s * si, -s, c * ci, c * si, 1000.0};
  std::copy(y0, y0 + 7, y);
}

double distance(const double* a, const double* b, int n) {
  double sum = 0.0;
  for (int k = 0; k < n; ++k) sum += (a[k] - b[k]) * (a[k] - b[k]);
  return std::sqrt(sum);
}

std::vector<double> local_error_slopes(const std::function<double(double)>& error, double h0,
                                       int halvings) {
  std::vector<double> slopes;
  double h = h0, e = error(h);
  for (int k = 0; k < halvings; ++k) {
    const double next = error(h / 2.0);
    slopes.push_back(std::log2(e / next));
    h /= 2.0;
    e = next;
  }
  return slopes;
}

void kepler(const double* rv0, double dt, double* rv) {
  using LD = long double;
  const LD r0 = std::sqrt(LD(rv0[0]) * rv0[0] + LD(rv0[1]) * rv0[1] + LD(rv0[2]) * rv0[2]);
  const LD v2 = LD(rv0[3]) * rv0[3] + LD(rv0[4]) * rv0[4] + LD(rv0[5]) * rv0[5];
  const LD sigma0 = LD(rv0[0]) * rv0[3] + LD(rv0[1]) * rv0[4] + LD(rv0[2]) * rv0[5];
  const LD a = 1.0L / (2.0L / r0 - v2);
  const LD sa = std::sqrt(a);
  const LD M = dt / (a * sa);
  LD dE = M;
  for (int it = 0; it < 60; ++it) {
    const LD F = dE - (1.0L - r0 / a) * std::sin(dE) + sigma0 / sa * (1.0L - std::cos(dE)) - M;
    const LD F1 = 1.0L - (1.0L - r0 / a) * std::cos(dE) + sigma0 / sa * std::sin(dE);
    dE -= F / F1;
  }
  const LD r = a + (r0 - a) * std::cos(dE) + sigma0 * sa * std::sin(dE);
  const LD f = 1.0L - a / r0 * (1.0L - std::cos(dE));
  const LD g = dt + a * sa * (std::sin(dE) - dE);
  const LD fd = -sa / (r * r0) * std::sin(dE);
  const LD gd = 1.0L - a / r * (1.0L - std::cos(dE));
  for (int i = 0; i < 3; ++i) {
    rv[i] = static_cast<double>(f * rv0[i] + g * rv0[3 + i]);
    rv[3 + i] = static_cast<double>(fd * rv0[i] + gd * rv0[3 + i]);
  }
}

double energy(const double* rv) {
  const double r = std::sqrt(rv[0] * rv[0] + rv[1] * rv[1] + rv[2] * rv[2]);
  return 0.5 * (rv[3] * rv[3] + rv[4] * rv[4] + rv[5] * rv[5]) - 1.0 / r;
}

void angular_momentum(const double* rv, double* h) {
  h[0] = rv[1] * rv[5] - rv[2] * rv[4];
  h[1] = rv[2] * rv[3] - rv[0] * rv[5];
  h[2] = rv[0] * rv[4] - rv[1] * rv[3];
}

void reference_arc(const double* start, double t0, double tf, const std::vector<ArcLine>& lines,
                   double* end) {
  double y[7];
  for (int i = 0; i < 3; ++i) {
    y[i] = start[i] / kAU;
    y[3 + i] = start[3 + i] / kSpeedUnit;
  }
  y[6] = start[6];
  double t = tu(t0);
  std::size_t i = 0;
  while (i + 1 < lines.size()) {
    // A phase: zero line i, table lines i+1 .. e, closing zero line e+1 at the epoch of e.
    std::size_t e = i + 1;
    while (e + 1 < lines.size() &&
           !(lines[e + 1].epoch == lines[e].epoch && lines[e + 1].u[0] == 0.0 &&
             lines[e + 1].u[1] == 0.0 && lines[e + 1].u[2] == 0.0)) {
      ++e;
    }
    std::vector<double> x;
    std::vector<std::array<double, 3>> u;
    for (std::size_t k = i + 1; k <= e; ++k) {
      x.push_back(tu(lines[k].epoch));
      u.push_back({lines[k].u[0], lines[k].u[1], lines[k].u[2]});
    }
    if (x.front() - t > 1e-13) coast(y, x.front() - t);
    thrust_phase(x, u, y);
    t = x.back();
    i = e + 2;
  }
  if (tu(tf) - t > 1e-13) coast(y, tu(tf) - t);
  for (int k = 0; k < 3; ++k) {
    end[k] = y[k] * kAU;
    end[3 + k] = y[3 + k] * kSpeedUnit;
  }
  end[6] = y[6];
}

}  // namespace kavren::test
