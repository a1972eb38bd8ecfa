// Builds one ShipClass from its lines, fed in file order as the solution is read: each
// line has passed its own checks, the grouping of the whole file is not known yet.
#pragma once

#include <string_view>
#include <vector>

#include "records/findings.h"
#include "records/records.h"

namespace kavren {

class ShipAssembler {
 public:
  // Ship number `ordinal` (1-based), written into `ship`; violations go to `findings`.
  // With `arcs_in_text` each arc keeps its lines as text (BurningArc::text), views into
  // the solution's text, which must outlive the ship; otherwise their numbers fill the
  // arc's `lines` and `values`.
  ShipAssembler(int ordinal, ShipClass& ship, Findings& findings, bool arcs_in_text = false);

  // One line of the ship: its 0-based file index, its trimmed text and the tokens of
  // that text. The first two are the launch pair; then event pairs with burning-arc
  // lines between them. False when the reading must end.
  bool add_line(int index, std::string_view text, const std::vector<std::string_view>& tokens);
  // Sets the final mass: that of the ship's last event line. Arc lines after the last
  // event pair close no arc and are ignored.
  void finish();

 private:
  bool add_event_pair();
  bool record_event(int event_id);
  bool record_earth_drop(double mass_change);
  bool close_arc();

  int ordinal_;
  ShipClass& ship_;
  Findings& findings_;
  bool arcs_in_text_;
  int lines_seen_ = 0;

  StateStruct previous_;        // second line of the previous event pair
  bool first_pending_ = false;  // first line of a pair read, its second not yet
  int first_id_ = 0;
  int second_id_ = 0;
  StateStruct first_;
  StateStruct second_;

  // Arc lines since the previous event pair: only where their text starts and ends. The
  // pair that closes the arc reads their numbers, or leaves them in the text; lines after
  // a ship's last event, which close no arc, cost nothing.
  int arc_first_line_ = -1;
  int arc_last_line_ = -1;
  const char* arc_begin_ = nullptr;
  const char* arc_end_ = nullptr;
  std::vector<DmStructShip> group_;  // collections since the last Earth drop
};

// The numbers of an arc whose lines are left in the text: epoch, ux, uy, uz of each line
// from first_line to last_line, four numbers a line, into `numbers` (reused: it is
// resized, not reallocated once large enough). Read exactly as the reader reads them.
void read_arc_numbers(const BurningArc& arc, std::vector<double>& numbers);

}  // namespace kavren
