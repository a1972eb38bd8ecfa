#pragma once

#include <cstddef>
#include <ostream>

namespace kavren {

// The four lines of a successful check; numbers in the stream's default format.
void print_summary(std::ostream& out, int num_ships, std::size_t num_mined, double total_mass);

}  // namespace kavren
