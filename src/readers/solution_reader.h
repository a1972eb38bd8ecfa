// Reads the solution file, checks its grammar, grouping and event order, and assembles
// one ShipClass per ship.
#pragma once

#include <string_view>
#include <vector>

#include "records/deadline.h"
#include "records/findings.h"
#include "records/records.h"

namespace kavren {

// Lists of line indices (0-based) by event kind, in line order.
struct EventLists {
  std::vector<int> launches, venus, earth, mars, rendezvous, ship_starts;
  std::vector<int> rendezvous_ids;  // the asteroid of each rendezvous line
  int previous_ship = 0;            // ship ID of the line before
};

// The grouping of the whole file from its lists: launches (ErrorA13-A15), then the pairs
// of flybys and rendezvous (A16-A23). False, with the finding, when it fails.
bool check_structure(const EventLists& lists, Findings& findings);

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

// One ship's lines read on their own, for a caller that verifies a file ship by ship: what
// scan_solution does for those lines, with the ship's first line at `first_index` and the
// ship the `ordinal`-th of the file.
struct ShipLines {
  std::size_t bytes = 0;  // the ship's lines in the text, line breaks included
  int lines = 0;
  EventLists lists;      // its event lines (ship_starts: its first line)
  Findings found{true};  // the lines' own checks: grammar, epochs
  // A structural fault or a finding that stops the collector ended the reading at the
  // last line counted: nothing after it is read.
  bool reading_ended = false;
  ShipClass ship;  // assembled with its arcs left in the text
  Findings assembly{true};
  bool assembly_ended = false;  // the assembly ended the reading: no ship follows
};

// Reads the ship that starts at the beginning of `text`: the lines up to the first line
// of another ship ID, or the end of the text. Collectors stop at their first finding
// when `stop_at_first`.
void read_ship_lines(std::string_view text, int first_index, int ordinal, bool stop_at_first,
                     ShipLines& out);

}  // namespace kavren
