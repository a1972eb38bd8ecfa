// Reads the solution file, checks its grammar, grouping and event order, and assembles
// one ShipClass per ship.
#pragma once

#include <string_view>
#include <vector>

#include "records/deadline.h"
#include "records/findings.h"
#include "records/records.h"

// Prints at most one message; false on the first violation. A file that cannot be
// opened ends the run with ErrorA01 (status 1).
bool ReadSolutionFile(std::vector<ShipClass>& ships, int& num_ships, const char* file_name);

namespace kavren {

// The solution's text read into ships. A structural fault of the file (its grammar, the
// grouping of its lines) ends the reading: false. The epoch of a line outside the
// mission (Error001, Error002), an event before the previous one (Error005) and a drop
// too fast (Error806) are findings after which a collector that goes on keeps reading.
// Past the deadline (null: none) the reading ends with DeadlineReached.
bool read_solution(std::string_view text, std::vector<ShipClass>& ships, int& num_ships,
                   Findings& findings, const DeadlineClock::time_point* deadline = nullptr);

}  // namespace kavren
