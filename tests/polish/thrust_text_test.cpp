// Thrust numbers rewritten in place: only tokens 4 to 6 of the edited lines change, in a
// form that reads back to the same double; a line whose thrust is not all written in it
// (a placeholder the reader makes of a tab followed by a blank) is not rewritten.
#include "polish/thrust_text.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <stdexcept>
#include <string>

namespace kavren {
namespace {

struct EditCase {
  const char* line;  // the edited line, between two others
  bool writable;
  const char* expected;  // the line once edited
};

TEST(ThrustText, OnlyTheThrustTokensOfEditedLinesChange) {
  const EditCase cases[] = {
      {"1\t-1\t64500.5\t0.1\t0.2\t0.3", true, "1\t-1\t64500.5\t0.1\t-0.25\t1e-300"},
      {"  1 -1  64500.5   0.1 0.2\t0.3\r", true, "  1 -1  64500.5   0.1 -0.25\t1e-300\r"},
      {"1\t-1\t64500.5\t 0.2 0.3", false, ""},                  // token 4 is a placeholder
      {"1\t0\t64500.5\t0.1\t0.2\t0.3\t1\t2\t3\t4", false, ""},  // an event line
  };
  for (const EditCase& c : cases) {
    const std::string text = std::string("first\n") + c.line + "\nlast";
    const auto starts = line_starts(text);
    ASSERT_EQ(starts.size(), 3u);
    std::string_view tokens[3];
    EXPECT_EQ(thrust_tokens(line_at(text, starts, 1), tokens), c.writable) << c.line;
    ThrustEdit edit;
    edit.line = 1;
    edit.u[0] = 0.1;
    edit.u[1] = -0.25;
    edit.u[2] = 1e-300;
    if (!c.writable) {
      EXPECT_THROW(apply_thrust_edits(text, starts, {edit}), std::invalid_argument);
      continue;
    }
    EXPECT_EQ(apply_thrust_edits(text, starts, {edit}),
              std::string("first\n") + c.expected + "\nlast");
  }
}

TEST(ThrustText, ShortestFormReadsBackExactly) {
  for (double x : {0.1, 1.0 / 3.0, -0.6, 5e-324, 0.59999999999999998, 123456789.0}) {
    const std::string text = shortest_number(x);
    EXPECT_EQ(std::strtod(text.c_str(), nullptr), x) << text;
    EXPECT_LE(text.size(), 24u);
  }
  EXPECT_EQ(shortest_number(0.1), "0.1");
}

}  // namespace
}  // namespace kavren
