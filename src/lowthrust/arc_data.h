// The layout of a burning arc's lines: thrust phases, each opened by a zero-thrust line
// sharing the epoch of the first thrust line, thrust lines one day apart (the last step
// may be shorter), closed by a zero-thrust line sharing the epoch of the last; coasts
// between phases; no line above the engine's limit.
#pragma once

#include <vector>

#include "records/findings.h"
#include "records/records.h"

namespace kavren {

// The phases of one arc: file line indices of the opening (starts) and closing (ends)
// zero-thrust line of each.
struct ArcPhases {
  int count = 0;
  std::vector<int> starts;
  std::vector<int> ends;
};

// Walks the arc's lines into `phases`. False when the layout is broken (the arc cannot
// be integrated) or the collector says to stop. A line above the thrust limit is a
// finding after which the walk goes on for a collector that goes on.
bool walk_thrust_table(const BurningArc& arc, ArcPhases& phases, Findings& findings, int ship);

}  // namespace kavren

// Walks the arc's lines; lists the opening (starts) and closing (ends) zero-thrust line of
// every thrust phase. Ends the run (status 0) at the first layout error.
bool Test_LowThrustData(BurningArc& arc, int& count, std::vector<int>& starts,
                        std::vector<int>& ends);
