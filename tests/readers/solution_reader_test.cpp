// The two forms of an arc the reader builds: its numbers read into the arc, or its lines
// left in the solution's text and read where the arc is verified.
#include "readers/solution_reader.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "readers/ship_assembly.h"
#include "support/error_case.h"

namespace kavren::test {
namespace {

struct Collect : ShipSink {
  std::vector<ShipClass> ships;
  void ship_read(ShipClass&& ship, Findings&&, bool) override { ships.push_back(std::move(ship)); }
};

TEST(SolutionReader, ArcLinesReadOrLeftInTheTextAgree) {
  const std::string text = demo_scenario().result_text();
  Findings read_findings(true), left_findings(true);
  std::vector<ShipClass> read;
  Collect left;
  int ships = 0;
  ASSERT_TRUE(read_solution(text, read, ships, read_findings));
  ASSERT_TRUE(scan_solution(text, left_findings, ships, left, nullptr, true));
  ASSERT_EQ(read.size(), left.ships.size());
  std::vector<double> numbers;
  int arcs_with_lines = 0;
  for (std::size_t s = 0; s < read.size(); ++s) {
    ASSERT_EQ(read[s].burning_arcs.size(), left.ships[s].burning_arcs.size());
    for (std::size_t a = 0; a < read[s].burning_arcs.size(); ++a) {
      const BurningArc& in_arc = read[s].burning_arcs[a];
      const BurningArc& in_text = left.ships[s].burning_arcs[a];
      const std::size_t count =
          in_arc.first_line < 0
              ? 0
              : static_cast<std::size_t>(in_arc.last_line - in_arc.first_line + 1);
      EXPECT_TRUE(in_arc.text.empty());
      EXPECT_TRUE(in_text.lines.empty() && in_text.values.empty());
      ASSERT_EQ(in_arc.lines.size(), count);
      ASSERT_EQ(in_arc.values.size(), count);
      read_arc_numbers(in_text, numbers);
      ASSERT_EQ(numbers.size(), 4 * count);
      for (std::size_t k = 0; k < count; ++k) {
        const double expected[4] = {in_arc.values[k], in_arc.lines[k][0], in_arc.lines[k][1],
                                    in_arc.lines[k][2]};
        EXPECT_EQ(std::memcmp(expected, &numbers[4 * k], sizeof expected), 0) << "line " << k;
      }
      arcs_with_lines += count > 0;
    }
  }
  EXPECT_GT(arcs_with_lines, 10);
}

}  // namespace
}  // namespace kavren::test
