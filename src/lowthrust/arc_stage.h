// Verification of all burning arcs, spread over worker threads with a verdict identical
// to checking them one after the other: findings come in file order (ship by ship, arc
// by arc, the layout before the integration).
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include "kavren/report.h"
#include "records/deadline.h"
#include "records/findings.h"
#include "records/records.h"

namespace kavren {

struct ArcStageOptions {
  int workers = 1;
  bool trajectories = false;   // keep the states of every accepted step, per ship
  bool inspect_steps = false;  // warn of steps that span several thrust-table points
  const DeadlineClock::time_point* deadline = nullptr;
  std::function<void(std::size_t done, std::size_t total)> progress;
  // Reads the numbers of an arc whose lines are left in the text (BurningArc::text).
  void (*read_numbers)(const BurningArc& arc, std::vector<double>& numbers) = nullptr;
};

struct ArcStageResult {
  std::vector<int> thrust_phases;        // per ship
  std::vector<Trajectory> trajectories;  // per ship, when asked for
  std::uint64_t evaluations = 0;
  std::size_t arcs = 0;
  bool deadline_reached = false;
};

// Arcs verified while ships are still being added: each ship's arcs may start as soon
// as the ship is added, on the worker threads (or, with one worker, on the caller's
// thread at once); finish() puts every outcome back in file order. A ship's arcs must
// stay where they are, unchanged, until finish() returns or the pipeline is gone.
class ArcPipeline {
 public:
  ArcPipeline(const ArcStageOptions& options, bool stop_at_first);
  ~ArcPipeline();  // stops the workers
  ArcPipeline(const ArcPipeline&) = delete;
  ArcPipeline& operator=(const ArcPipeline&) = delete;

  // The next ship in file order.
  void add_ship(const ShipClass& ship);
  // No outcome will be asked for: arcs not yet begun are not begun.
  void cancel();
  // Waits for every arc, then appends their findings in file order (ship by ship, arc
  // by arc, the layout before the integration). False when the collector says to stop
  // or the deadline passed.
  bool finish(Findings& findings, ArcStageResult& result);

 private:
  struct State;
  std::unique_ptr<State> state_;
};

// Every arc of every ship: the layout of its lines, then its integration and end state.
// False when the collector says to stop (or the deadline passed).
bool check_arcs(const std::vector<ShipClass>& ships, Findings& findings,
                const ArcStageOptions& options, ArcStageResult& result);

}  // namespace kavren
