// Near misses made from a valid solution: the thrust of one to three arcs, each in a
// different ship, turned by a small angle (constant or drifting along the arc), with or
// without a magnitude change of a few parts in ten thousand, so that the verifier's
// integration of each misses the state written at its end by 1 to 20 times the position
// limit. Only the thrust numbers of those arcs' lines change.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace synth {

struct PlantedMiss {
  int ship = 0;
  long long end_line = 0;      // 1-based line of the end state the arc now misses
  double degrees = 0.0;        // turn at the middle of the arc's thrust
  double drift_degrees = 0.0;  // change of the turn from the middle to either end
  double scale = 0.0;          // relative magnitude change (0: none)
  double miss_km = 0.0;        // the position miss the verifier finds
};

// Turns `count` arcs (1..3) of the solution; throws when it has fewer thrusting ships or
// a miss cannot be placed in the range.
std::string near_miss(const std::string& result, std::uint64_t seed, int count,
                      std::vector<PlantedMiss>& planted);

}  // namespace synth
