// The demo's arcs recomputed without the library: every coast by Kepler motion, every
// thrust phase by a fixed-step RK4 with Richardson extrapolation (tests/support). The
// synthesiser writes its end states with the checker's own integrator, so a fault they
// share passes every synthesised scenario; these references do not share it.
#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "support/e2e.h"
#include "support/error_case.h"
#include "support/reference.h"

namespace kavren::test {
namespace {

// An arc: the event line it leaves from, its burning-arc lines, and the event line that
// ends it (0-based file lines).
struct Arc {
  int from;
  std::vector<ArcLine> lines;
  int to;
};

std::vector<Arc> arcs_of(const std::vector<std::string>& lines) {
  std::vector<Arc> arcs;
  for (std::size_t i = 1; i + 1 < lines.size(); ++i) {
    const std::vector<std::string> t = tokens_of(lines[i]);
    const bool event = t.size() == 10;
    if (!event || tokens_of(lines[i + 1]).size() != 6 || t[0] != tokens_of(lines[i - 1])[0]) {
      continue;  // not the second line of an event pair followed by an arc
    }
    Arc arc{static_cast<int>(i), {}, -1};
    std::size_t k = i + 1;
    for (; k < lines.size() && tokens_of(lines[k]).size() == 6; ++k) {
      arc.lines.push_back(
          {token(lines[k], 2), {token(lines[k], 3), token(lines[k], 4), token(lines[k], 5)}});
    }
    arc.to = static_cast<int>(k);
    arcs.push_back(arc);
  }
  return arcs;
}

// The end state of `arc` (km, km/s, kg) from its start line as the scenario has it.
std::vector<double> reference_end(const Scenario& s, const Arc& arc) {
  double start[7], end[7];
  for (int j = 0; j < 7; ++j) start[j] = token(s.lines[arc.from], 3 + j);
  reference_arc(start, token(s.lines[arc.from], 2), token(s.lines[arc.to], 2), arc.lines, end);
  return std::vector<double>(end, end + 7);
}

// The demo with the end line of every arc replaced by the reference end state.
Scenario with_reference_ends() {
  Scenario s = demo_scenario();
  for (const Arc& arc : arcs_of(s.lines)) {
    const std::vector<double> end = reference_end(s, arc);
    for (int j = 0; j < 7; ++j)
      s.lines[arc.to] = with_token(s.lines[arc.to], 3 + j, number(end[j]));
  }
  return s;
}

RunResult run(const Scenario& s) {
  return run_check({{"KAVREN_Asteroids_Data.txt", s.catalogue}, {"Result.txt", s.result_text()}});
}

TEST(ReferenceArcs, SynthesisedEndStatesAgreeWithIndependentIntegration) {
  const Scenario& s = demo_scenario();
  const std::vector<Arc> arcs = arcs_of(s.lines);
  int thrusting = 0;
  for (const Arc& arc : arcs) {
    const std::vector<double> end = reference_end(s, arc);
    double written[7];
    for (int j = 0; j < 7; ++j) written[j] = token(s.lines[arc.to], 3 + j);
    SCOPED_TRACE("arc ending on line " + std::to_string(arc.to + 1));
    EXPECT_LT(distance(end.data(), written, 3), 0.05);          // km
    EXPECT_LT(distance(end.data() + 3, written + 3, 3), 1e-8);  // km/s
    EXPECT_LT(std::fabs(end[6] - written[6]), 1e-7);            // kg
    for (const ArcLine& line : arc.lines) {
      if (line.u[0] != 0.0 || line.u[1] != 0.0 || line.u[2] != 0.0) {
        ++thrusting;
        break;
      }
    }
  }
  EXPECT_GE(arcs.size(), 45u);
  EXPECT_GE(thrusting, 3);
}

// The checker accepts the reference end states, still accepts them moved 990 km along the
// track of ship 5's last asteroid (moved with them), and refuses them moved 1010 km: its
// own integration of that thrust arc lies within 10 km of the reference along the track.
TEST(ReferenceArcs, CheckerAcceptsReferenceEndStatesAndRefusesThemPastTheLimit) {
  const RunResult demo = run(demo_scenario());
  ASSERT_EQ(demo.out.rfind("Check successfully!\n", 0), 0u) << demo.out;
  Scenario s = with_reference_ends();
  const RunResult accepted = run(s);
  EXPECT_EQ(accepted.out, demo.out);
  EXPECT_EQ(accepted.status, 0);
  EXPECT_EQ(accepted.score, demo.score);

  const int meet = find_line(s.lines, 1017);
  Scenario near = s;
  move_along_track(near, 1017, meet, 990.0);
  EXPECT_EQ(run(near).out, demo.out);

  Scenario far = s;
  move_along_track(far, 1017, meet, 1010.0);
  const RunResult refused = run(far);
  const std::string head = "Error201. Position Error on the line " + std::to_string(meet + 1) +
                           ": The position error between the integral state from the previous "
                           "event and the state shown in the file is 10";
  EXPECT_EQ(refused.out.substr(0, head.size()), head) << refused.out;
  EXPECT_EQ(refused.status, 1);
  EXPECT_FALSE(refused.score.has_value());
}

}  // namespace
}  // namespace kavren::test
