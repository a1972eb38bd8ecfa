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

// The integration alone, into reached; Error003, Error004 and Error101 end the run as in
// the check. Scenario builders use it to write end states the check reproduces.
void integrate_arc(const BurningArc& arc, int count, const std::vector<int>& starts,
                   const std::vector<int>& ends, double* reached);

}  // namespace kavren

bool Test_LowThrust_RKF78(const BurningArc& arc, int count, const std::vector<int>& starts,
                          const std::vector<int>& ends);
// reached and expected: x, y, z (km), vx, vy, vz (km/s), m (kg). Ends the run with
// Error201..203 (status 1) beyond 1000 km, 0.001 km/s or 0.001 kg.
bool Judge_rvmf(const double* reached, const double* expected, int line);
double V_norm(const std::vector<double>& v);
