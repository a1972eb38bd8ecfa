// Integration of a burning arc through its coasts and thrust phases, and the comparison
// of the state reached with the state written at its end.
#pragma once

#include <cstdint>
#include <vector>

#include "kavren/report.h"
#include "lowthrust/arc_data.h"
#include "records/deadline.h"
#include "records/findings.h"
#include "records/records.h"

namespace kavren {

// What integrating one arc needs besides the arc, and what it yields besides findings.
struct ArcIntegration {
  int ship = 0;
  // Keep every accepted state here (null: none kept).
  std::vector<TrajectoryPoint>* trajectory = nullptr;
  // Look for steps that span several thrust-table points.
  bool inspect_steps = false;
  // Abandon the integration (DeadlineReached) once this instant has passed; null: never.
  const DeadlineClock::time_point* deadline = nullptr;

  double reached[7] = {};  // x, y, z (km), vx, vy, vz (km/s), m (kg) at the arc's end
  std::uint64_t evaluations = 0;
};

// Integrates the arc (Error003, Error004, Error101 on the way) and compares the state
// reached with its end state (Error201-203). False when the collector says to stop.
bool integrate_and_compare(const BurningArc& arc, const ArcPhases& phases, Findings& findings,
                           ArcIntegration& run);
bool integrate_and_compare(const BurningArc& arc, const ArcTable& table, const ArcPhases& phases,
                           Findings& findings, ArcIntegration& run);

// The state written at the arc's end against the state reached (x, y, z km, vx, vy, vz
// km/s, m kg): Error201-203. False when the collector says to stop.
bool compare_end_state(const BurningArc& arc, const double* reached, Findings& findings, int ship);

// The integration alone, into reached: the state the check compares with the arc's end.
// False, with reached untouched, when Error003, Error004 or Error101 went to `findings`.
// Scenario builders use it to write end states the check reproduces.
bool integrate_arc(const BurningArc& arc, int count, const std::vector<int>& starts,
                   const std::vector<int>& ends, double* reached, Findings& findings);

}  // namespace kavren
