// The outputs of kavren-report, each built from finished reports: the text for the
// terminal, the comparison table of several solutions, and the self-contained HTML page.
#pragma once

#include <string>
#include <vector>

#include "kavren/report.h"

namespace kavren::report {

// One verified solution file and what was learned about it.
struct Checked {
  std::string name;  // as named on the command line; "-" for standard input
  std::string text;  // the solution's bytes (the HTML page quotes the lines it names)
  Report report;
  double seconds = 0.0;  // wall time of the verification
};

struct TextStyle {
  bool colour = false;
};

// The report of one solution for people: the checker's verdict first, then the findings,
// the constraint table, the warnings and the per-ship summary.
std::string render_text(const Checked& checked, const TextStyle& style);

// One row per solution: file, verdict, ships, asteroids, resource mass, time.
std::string render_table(const std::vector<Checked>& all, const TextStyle& style);

// One page, no network needed: every solution's verdict, findings with the lines they
// name, constraints, warnings, summary and plots.
std::string render_html(const std::vector<Checked>& all);

// Shortest text that reads back as the same double ("nan", "inf" and "-inf" otherwise).
std::string exact_number(double x);
// A number for people: `digits` significant digits, "—" when it is not a number.
std::string short_number(double x, int digits = 6);

}  // namespace kavren::report
