// Whether kavren-polish can fix an arc whose end state failed (Error201, Error202,
// Error203): it varies the thrust, so it can when the arc has thrust lines. A cheap look
// at the arc's lines in the solution's text, without integrating anything.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "kavren/report.h"

namespace kavren::report {

struct PolishHint {
  int ship = 0;
  long long line = 0;  // the end state's line (1-based), the findings' line
  bool fixable = false;
};

// One hint per failing arc, in the order of the findings; none without the text.
std::vector<PolishHint> polish_hints(const Report& report, std::string_view text);
// A sentence for people.
std::string polish_sentence(const PolishHint& hint);

}  // namespace kavren::report
