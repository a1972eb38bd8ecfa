// The asteroid catalogue file: a header line, then 60,000 records of an ID and seven
// numbers (epoch MJD, a AU, e, i deg, RAAN deg, argument of periapsis deg, mean anomaly
// deg), asteroid ID k in row k-1, read as stream extraction reads numbers.
#pragma once

#include <string_view>

#include "astro/ephemeris.h"

namespace kavren {

// Fills `table` from the catalogue's text. The header line is dropped whatever it
// holds; reading stops at the first record the stream cannot read, leaving the rows it
// never reaches as they are.
void read_catalogue(std::string_view text, AsteroidTable& table);

}  // namespace kavren
