// Reads the solution file, checks its grammar, grouping and event order, and assembles
// one ShipClass per ship. Prints at most one message; false on the first violation.
#pragma once

#include <vector>

#include "records/records.h"

bool ReadSolutionFile(std::vector<ShipClass>& ships, int& num_ships, const char* file_name);
