// Reads the solution file, checks its grammar, grouping and event order, and assembles
// one ShipClass per ship.
#pragma once

#include <string_view>
#include <vector>

#include "records/deadline.h"
#include "records/findings.h"
#include "records/records.h"

namespace kavren {

// Receives each ship as soon as its last line is read, in ship order, before the
// grouping of the whole file is known: a ship handed out stands only once
// scan_solution returned true.
class ShipSink {
 public:
  virtual ~ShipSink() = default;
  // `assembly` holds what assembling the ship found (a collector of the kind of the
  // reading's own); `ended` when the assembly ended the reading: no ship follows.
  virtual void ship_read(ShipClass&& ship, Findings&& assembly, bool ended) = 0;
};

// The solution's text in one pass: the checks of every line go to `findings`, each ship
// to `sink` as soon as it is assembled. False when a line or the grouping of the file
// ends the reading (every ship handed out is then void). Otherwise the ships stand; the
// caller appends their assembly findings in order, up to one that ended the reading.
// `num_ships` is the number of ships the file holds. With `arcs_in_text` the arcs keep
// their lines as text (see ShipAssembler).
bool scan_solution(std::string_view text, Findings& findings, int& num_ships, ShipSink& sink,
                   const DeadlineClock::time_point* deadline = nullptr, bool arcs_in_text = false);

// The solution's text read into ships. A structural fault of the file (its grammar, the
// grouping of its lines) ends the reading: false. The epoch of a line outside the
// mission (Error001, Error002), an event before the previous one (Error005) and a drop
// too fast (Error806) are findings after which a collector that goes on keeps reading.
// Past the deadline (null: none) the reading ends with DeadlineReached.
bool read_solution(std::string_view text, std::vector<ShipClass>& ships, int& num_ships,
                   Findings& findings, const DeadlineClock::time_point* deadline = nullptr);

}  // namespace kavren
