// Builders of event records on the ephemeris, and an in-process run of a check that
// captures what it prints.
#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <vector>

#include "astro/ephemeris.h"
#include "readers/catalogue.h"
#include "records/records.h"
#include "support/capture.h"

namespace events_test {

struct Outcome {
  bool result = false;  // what the check returned
  std::string out;      // everything it printed
  bool ended = false;   // the check ended the run
  int status = -1;      // the run's exit status when it did
};

// Runs check() with standard output captured.
template <class Check>
Outcome run(Check&& check) {
  bool result = false;
  const kavren::test::Outcome captured = kavren::test::capture([&] { result = check(); });
  return Outcome{result, captured.out, captured.ended, captured.status};
}

inline std::array<double, 6> body_state(int id, double epoch) {
  std::array<double, 6> rv{};
  int flag = 0;
  getrv_stats_asteroids(flag, rv.data(), id, epoch);
  return rv;
}

// A ship line sitting exactly on body id at the epoch.
inline StateStruct on_body(int id, double epoch, int line_index, double mass) {
  const std::array<double, 6> rv = body_state(id, epoch);
  StateStruct s;
  s.line_index = line_index;
  s.epoch = epoch;
  for (int k = 0; k < 3; ++k) {
    s.r[k] = rv[k];
    s.v[k] = rv[k + 3];
  }
  s.mass = mass;
  return s;
}

// A full 60000 x 7 catalogue of zeros with a few asteroids filled in, installed as the
// process-wide table while a test runs; the previous table comes back afterwards.
class Catalogue {
 public:
  Catalogue()
      : cells_(static_cast<std::size_t>(kavren::kNumAsteroids) * kavren::kCatalogueColumns, 0.0),
        rows_(kavren::kNumAsteroids, nullptr) {
    for (int k = 0; k < kavren::kNumAsteroids; ++k) {
      rows_[k] = cells_.data() + static_cast<std::size_t>(k) * kavren::kCatalogueColumns;
    }
    set_row(17, {64328.0, 1.5, 0.2, 10.0, 30.0, 60.0, 45.0});
    set_row(5001, {64328.0, 1.1, -0.1, 20.0, 40.0, 70.0, 5.0});  // elements the ephemeris refuses
    set_row(60000, {64328.0, 3.0, 0.6, 170.0, 300.0, 200.0, 350.0});
    saved_ = t_eles_asteroids;
    t_eles_asteroids = rows_.data();
  }
  ~Catalogue() { t_eles_asteroids = saved_; }
  Catalogue(const Catalogue&) = delete;
  Catalogue& operator=(const Catalogue&) = delete;

 private:
  void set_row(int id, const std::array<double, 7>& values) {
    for (int k = 0; k < kavren::kCatalogueColumns; ++k) rows_[id - 1][k] = values[k];
  }
  std::vector<double> cells_;
  std::vector<double*> rows_;
  double** saved_ = nullptr;
};

}  // namespace events_test
