// The thrust numbers of burning-arc lines in a solution's text: where they lie, and the
// text with some of them replaced. Every other byte of the text stays as it is.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace kavren {

// Where each line of the text starts, lines as the reader counts them (split at line
// breaks; a last line without one is a line).
std::vector<std::size_t> line_starts(std::string_view text);

// The line `index` (0-based) without its line break.
std::string_view line_at(std::string_view text, const std::vector<std::size_t>& starts,
                         std::size_t index);

// Tokens 4 to 6 of a burning-arc line as the reader cuts it. False when the line is not
// one of six tokens or a thrust token is not written in it (a placeholder the reader
// makes of a tab followed by a blank).
bool thrust_tokens(std::string_view line, std::string_view tokens[3]);

// The shortest text that reads back as the same double (at most 17 significant digits).
std::string shortest_number(double x);

// New thrust numbers for one line (0-based file index).
struct ThrustEdit {
  std::size_t line = 0;
  double u[3] = {0.0, 0.0, 0.0};
};

// The text with tokens 4 to 6 of each edited line replaced by the shortest form of its
// numbers. Every edited line must pass thrust_tokens (std::invalid_argument otherwise).
std::string apply_thrust_edits(std::string_view text, const std::vector<std::size_t>& starts,
                               std::vector<ThrustEdit> edits);

}  // namespace kavren
