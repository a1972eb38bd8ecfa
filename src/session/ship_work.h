// What verifying one ship on its own produces, collector by collector in the order of a
// run's stages, so that a session can put the ships of a file together again as one
// verification of the whole file would have: the lines' own checks, the assembly, the
// events and the ship's bookkeeping, the arcs.
#pragma once

#include <cstdint>
#include <functional>
#include <string_view>

#include "kavren/verify.h"
#include "readers/solution_reader.h"
#include "records/deadline.h"

namespace kavren {

struct ShipWork {
  int first_index = 0;  // the ship's first line, 0-based, where it was verified
  int ordinal = 0;      // its place among the ships, 1-based
  ShipLines read;       // lines, lists, the lines' checks, the assembled ship (its arcs,
                        // once verified, are not kept: nothing after them reads them)
  // The events and the ship's own bookkeeping (check_ship), when a run gets that far
  // with this ship.
  bool events_checked = false;
  Findings events{true};
  // Its arcs, when a run hands them to the arc stage.
  bool arcs_checked = false;
  Findings arcs{true};
  int thrust_phases = 0;
  Trajectory trajectory;
  std::uint64_t evaluations = 0;
  std::size_t arc_count = 0;

  // No collector holds a finding: the work may move to another place in a file.
  bool movable() const;
  // The same work `line_shift` lines further down, on the `ordinal`-th ship.
  void relocate(long long line_shift, int new_ordinal);
  // What the session counts against its memory bound.
  std::size_t footprint() const;
};

struct ShipWorkOptions {
  Mode mode = Mode::first;
  bool trajectories = false;
  int workers = 1;
  const DeadlineClock::time_point* deadline = nullptr;
  std::function<void(std::size_t done, std::size_t total)> progress;  // the ship's arcs
};

// Verifies the ship whose lines start `text` (see read_ship_lines). The arcs' lines are
// read from `text` while it runs; the work keeps no view into it.
void verify_ship(const Catalogue& catalogue, std::string_view text, int first_index, int ordinal,
                 const ShipWorkOptions& options, ShipWork& work);

}  // namespace kavren
