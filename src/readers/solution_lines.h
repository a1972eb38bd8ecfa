// What the solution reader keeps of every line between reading the file and
// assembling the ships.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "records/records.h"

namespace kavren {

struct SolutionLine {
  std::size_t text_begin = 0;  // trimmed text within the file's bytes
  std::size_t text_length = 0;
  double epoch = 0.0;          // token 3
  int event_id = 0;            // token 2; -1 on burning-arc lines
  bool is_event = false;       // 10 tokens (otherwise 6: a burning-arc line)
};

struct SolutionText {
  std::string bytes;
  std::vector<SolutionLine> lines;
  std::string_view text(int index) const {
    const SolutionLine& line = lines[static_cast<std::size_t>(index)];
    return std::string_view(bytes).substr(line.text_begin, line.text_length);
  }
};

// Builds ship number `ordinal` (1-based) from its lines [first, end): the launch pair,
// then every event pair in line order with the burning arcs between them. Prints the
// message of the first violation and returns false.
bool assemble_ship(const SolutionText& solution, int ordinal, int first, int end,
                   ShipClass& ship);

}  // namespace kavren
