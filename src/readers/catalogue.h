// The asteroid catalogue: 60,000 rows of 7 doubles (epoch MJD, a AU, e, i deg,
// RAAN deg, argument of periapsis deg, mean anomaly deg), asteroid ID k in row k-1.
#pragma once

namespace kavren {
constexpr int kNumAsteroids = 60000;
constexpr int kCatalogueColumns = 7;
}  // namespace kavren

// Process-wide table filled by ReadAsteroidsData; null when no catalogue is loaded.
extern double** t_eles_asteroids;

// Loads the catalogue; prints ErrorA00 and ends the run with status 1 when the file
// cannot be opened.
void ReadAsteroidsData(const char* file_name);
// Releases the table.
void clear_info();
