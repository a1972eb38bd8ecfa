// A differential corrector of burning arcs: for every arc whose end state misses the
// state written at its end (Error201, Error202, Error203), the thrust numbers of that
// arc's lines are changed, and only those, so that the verifier's own integration of the
// arc lands on the written state with a safety margin. Nothing is read or written,
// nothing is printed.
//
//   #include <kavren/polish.h>
//   const kavren::PolishResult p = kavren::polish(catalogue, solution_text, {});
//   for (const kavren::ArcPolish& a : p.arcs)
//     std::cout << a.end_line << (a.polished ? " polished" : " not polished: " + a.reason);
//   write(p.text);  // the polished solution; p.report is its verification
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "kavren/report.h"
#include "kavren/verify.h"

namespace kavren {

struct PolishOptions {
  // The polished arc's end-state errors may reach this fraction of each limit
  // (0.5: 500 km, 0.0005 km/s, 0.0005 kg); in (0, 1].
  double safety = 0.5;
  // The largest turn of any thrust line, degrees.
  double max_degrees = 10.0;
  // The largest relative change of a thrust magnitude (used only when the mass is off).
  double max_scale = 0.01;
  // Threads polishing arcs and verifying; 0: one per hardware thread.
  int threads = 0;
  // Newton (Levenberg-Marquardt) iterations per arc at most.
  int max_iterations = 25;
};

// One arc whose end state failed.
struct ArcPolish {
  int ship = 0;              // 1-based ordinal of the ship
  long long first_line = 0;  // the arc's lines, 1-based (0 when it has none)
  long long last_line = 0;
  long long end_line = 0;          // the line of the written end state (the findings' line)
  std::vector<std::string> codes;  // what the verifier found there: "Error201" ...
  bool polished = false;
  std::string reason;  // why not, when not polished
  // End-state errors: position km, velocity km/s, mass kg; before and after (after equals
  // before when the arc was not polished).
  double before[3] = {kNotANumber, kNotANumber, kNotANumber};
  double after[3] = {kNotANumber, kNotANumber, kNotANumber};
  double max_turn_degrees = 0.0;      // largest change of direction of a thrust line
  double max_magnitude_change = 0.0;  // largest change of a thrust magnitude, N
  int changed_lines = 0;
  int iterations = 0;
  int integrations = 0;
};

// A finding polishing does not touch, and why.
struct LeftFinding {
  std::string code;
  std::vector<long long> lines;
  int ship = 0;
  std::string reason;
};

struct PolishResult {
  std::string text;               // the polished solution (the input when nothing changed)
  std::vector<ArcPolish> arcs;    // one entry per failing arc, in file order
  std::vector<LeftFinding> left;  // the other findings of the input, in its order
  Report report;                  // the polished text verified, every finding (Mode::all)
};

// Polishes the failing arcs of a solution. Throws std::invalid_argument on options out
// of range. The result does not depend on the number of threads.
PolishResult polish(const Catalogue& catalogue, std::string_view solution,
                    const PolishOptions& options = {});

}  // namespace kavren
