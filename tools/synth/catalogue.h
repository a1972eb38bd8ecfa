// The synthetic asteroid catalogue: random plausible main-belt rows plus asteroids
// planted on the ships' own trajectories. The builder checks every encounter against the
// verifier's ephemeris over these rows.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "astro/ephemeris.h"
#include "synth/rng.h"

namespace synth {

using Row = std::array<double, 7>;  // epoch, a (AU), e, i, RAAN, argp, M0 (degrees)

class Catalogue {
 public:
  explicit Catalogue(std::uint64_t seed);
  Catalogue(const Catalogue&) = delete;
  Catalogue& operator=(const Catalogue&) = delete;

  // Plants an asteroid that passes through (r, v) at epoch t (MJD); returns its ID.
  int plant(const double* rv, double t);
  std::string text() const;
  int planted() const { return next_id_ - first_planted_; }
  // The rows as the verifier's ephemeris reads them.
  kavren::AsteroidRows rows() const { return pointers_.data(); }

 private:
  std::vector<Row> rows_;
  std::vector<double*> pointers_;
  int first_planted_;
  int next_id_;
};

}  // namespace synth
