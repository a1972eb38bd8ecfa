#include "synth/catalogue.h"

#include <cmath>
#include <stdexcept>

#include "astro/constants.h"
#include "readers/catalogue.h"
#include "synth/text.h"

namespace synth {
namespace {

constexpr double kPi = 3.14159265358979323846;

double to_degrees_turn(double radians) {
  double deg = std::fmod(radians / 0.017453292519943295, 360.0);
  if (deg < 0.0) deg += 360.0;
  return deg;
}

// Classical elements of an elliptic state: a (km), e, i, RAAN, argp, M (rad).
void elements_of(const double* rv, double* el) {
  const double* r = rv;
  const double* v = rv + 3;
  const double mu = kavren::kMuSun;
  const double rn = std::sqrt(r[0] * r[0] + r[1] * r[1] + r[2] * r[2]);
  const double v2 = v[0] * v[0] + v[1] * v[1] + v[2] * v[2];
  const double rv_dot = r[0] * v[0] + r[1] * v[1] + r[2] * v[2];
  const double h[3] = {r[1] * v[2] - r[2] * v[1], r[2] * v[0] - r[0] * v[2],
                       r[0] * v[1] - r[1] * v[0]};
  const double hn = std::sqrt(h[0] * h[0] + h[1] * h[1] + h[2] * h[2]);
  const double a = 1.0 / (2.0 / rn - v2 / mu);
  double ev[3];
  for (int k = 0; k < 3; ++k) ev[k] = ((v2 - mu / rn) * r[k] - rv_dot * v[k]) / mu;
  const double e = std::sqrt(ev[0] * ev[0] + ev[1] * ev[1] + ev[2] * ev[2]);
  if (!(a > 0.0) || !(e < 1.0) || !(e > 1e-9)) throw std::runtime_error("orbit not plantable");
  const double inc = std::acos(h[2] / hn);
  const double node[3] = {-h[1], h[0], 0.0};
  const double nn = std::sqrt(node[0] * node[0] + node[1] * node[1]);
  if (!(nn > 1e-9 * hn)) throw std::runtime_error("equatorial orbit not plantable");
  const double raan = std::atan2(node[1], node[0]);
  double argp = std::acos((node[0] * ev[0] + node[1] * ev[1]) / (nn * e));
  if (ev[2] < 0.0) argp = 2.0 * kPi - argp;
  double f = std::acos((ev[0] * r[0] + ev[1] * r[1] + ev[2] * r[2]) / (e * rn));
  if (rv_dot < 0.0) f = 2.0 * kPi - f;
  const double E = 2.0 * std::atan(std::sqrt((1.0 - e) / (1.0 + e)) * std::tan(f / 2.0));
  const double M = E - e * std::sin(E);
  el[0] = a;
  el[1] = e;
  el[2] = inc;
  el[3] = raan;
  el[4] = argp;
  el[5] = M;
}

}  // namespace

Catalogue::Catalogue(std::uint64_t seed)
    : rows_(kavren::kNumAsteroids), pointers_(kavren::kNumAsteroids), first_planted_(0) {
  Rng rng(seed);
  for (Row& row : rows_) {
    row = {64328.0,
           reparse(rng.uniform(1.5, 3.5)),
           reparse(rng.uniform(0.0, 0.3)),
           reparse(rng.uniform(0.0, 20.0)),
           reparse(rng.uniform(0.0, 360.0)),
           reparse(rng.uniform(0.0, 360.0)),
           reparse(rng.uniform(0.0, 360.0))};
  }
  // Planted asteroids take IDs from a seeded start so scenarios differ in their IDs.
  first_planted_ = 1 + static_cast<int>(rng.next() % 40000);
  next_id_ = first_planted_;
  for (int k = 0; k < kavren::kNumAsteroids; ++k) pointers_[k] = rows_[k].data();
}

int Catalogue::plant(const double* rv, double t) {
  if (next_id_ > kavren::kNumAsteroids) throw std::runtime_error("catalogue full");
  double el[6];
  elements_of(rv, el);
  const double n = std::sqrt(kavren::kMuSun / (el[0] * el[0] * el[0]));
  const double M0 = el[5] - n * (t - 64328.0) * 86400.0;
  Row& row = rows_[next_id_ - 1];
  row = {64328.0,
         reparse(el[0] / kavren::kAU),
         reparse(el[1]),
         reparse(to_degrees_turn(el[2])),
         reparse(to_degrees_turn(el[3])),
         reparse(to_degrees_turn(el[4])),
         reparse(to_degrees_turn(M0))};
  return next_id_++;
}

std::string Catalogue::text() const {
  std::string out = "ID\tEpoch(MJD)\ta(AU)\te(-)\ti(deg)\tOmega(deg)\tomega(deg)\tM0(deg)\n";
  out.reserve(rows_.size() * 140);
  for (std::size_t k = 0; k < rows_.size(); ++k) {
    out += std::to_string(k + 1);
    for (double value : rows_[k]) {
      out += '\t';
      out += fmt(value);
    }
    out += '\n';
  }
  return out;
}

}  // namespace synth
