// Verification of all burning arcs, spread over worker threads with a verdict identical
// to checking them one after the other: findings come in file order (ship by ship, arc
// by arc, the layout before the integration).
#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "kavren/report.h"
#include "records/deadline.h"
#include "records/findings.h"
#include "records/records.h"

namespace kavren {

struct ArcStageOptions {
  int workers = 1;
  bool trajectories = false;    // keep the states of every accepted step, per ship
  bool inspect_steps = false;   // warn of steps that span several thrust-table points
  const DeadlineClock::time_point* deadline = nullptr;
  std::function<void(std::size_t done, std::size_t total)> progress;
};

struct ArcStageResult {
  std::vector<int> thrust_phases;              // per ship
  std::vector<Trajectory> trajectories;         // per ship, when asked for
  std::uint64_t evaluations = 0;
  std::size_t arcs = 0;
  bool deadline_reached = false;
};

// Every arc of every ship: the layout of its lines, then its integration and end state.
// False when the collector says to stop (or the deadline passed).
bool check_arcs(const std::vector<ShipClass>& ships, Findings& findings,
                const ArcStageOptions& options, ArcStageResult& result);

}  // namespace kavren

// Every arc of every ship, in order; the first failure ends the run with its status.
bool CheckBuringArc(const std::vector<ShipClass>& ships);
bool CheckBuringArc(const ShipClass& ship);
