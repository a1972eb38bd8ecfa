// States of the planets and the catalogue asteroids: Keplerian orbits about the Sun,
// elements at MJD 64328. Body identifiers: -4 Mars, -3 and 0 the Earth, -2 Venus,
// 1..60000 catalogue asteroid.
#pragma once

#include <vector>

namespace kavren {

constexpr int kNumAsteroids = 60000;
// Catalogue columns: epoch MJD, a AU, e, i deg, RAAN deg, argument of periapsis deg,
// mean anomaly deg.
constexpr int kCatalogueColumns = 7;

// Rows of catalogue elements, asteroid k in row k-1 (null: no catalogue).
using AsteroidRows = const double* const*;

// The catalogue's rows in one block; rows never filled are zero.
class AsteroidTable {
 public:
  AsteroidTable();
  AsteroidTable(const AsteroidTable&) = delete;
  AsteroidTable& operator=(const AsteroidTable&) = delete;
  // Row of asteroid id (1..60000).
  double* row(int id) {
    return data_.data() + static_cast<std::size_t>(id - 1) * kCatalogueColumns;
  }
  AsteroidRows rows() const { return rows_.data(); }
  // The row pointers, writable, for the process-wide table t_eles_asteroids.
  double** mutable_rows() { return rows_.data(); }

 private:
  std::vector<double> data_;
  std::vector<double*> rows_;
};

// State of body id at epoch t (MJD) into rv[6], asteroids from `asteroids`. Flag 0 and
// rv untouched when the Kepler solution fails or id is no known body.
void body_state(int& flag, double* rv, int id, double t, AsteroidRows asteroids);

// Speed (km/s) of velocity v (km/s) relative to body id at epoch t (MJD). A body whose
// ephemeris fails is taken at rest at the Sun.
double speed_relative_to_body(int id, double t, const double* v, AsteroidRows asteroids);

}  // namespace kavren

// Keplerian state after dt (s) from ele0 = (a, e, i, RAAN, omega, M0).
void Ele0dt2rvt(int& flag, double* rv, const double* ele0, double mu, double dt, int MaxIter,
                double epsilon);
