// Builds one ShipClass from its lines, fed in file order after the whole file passed
// the line and grouping checks.
#pragma once

#include <string_view>
#include <vector>

#include "records/findings.h"
#include "records/records.h"

namespace kavren {

class ShipAssembler {
 public:
  // Ship number `ordinal` (1-based), written into `ship`; violations go to `findings`.
  // `text` is the whole solution, which the lines given to add_line are views into.
  ShipAssembler(int ordinal, ShipClass& ship, Findings& findings, std::string_view text);

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
  void take_arc_lines(BurningArc& arc);

  int ordinal_;
  ShipClass& ship_;
  Findings& findings_;
  const char* text_end_;
  int lines_seen_ = 0;
  std::vector<std::string_view> tokens_;  // of arc lines read again from the text

  StateStruct previous_;       // second line of the previous event pair
  bool first_pending_ = false;  // first line of a pair read, its second not yet
  int first_id_ = 0;
  int second_id_ = 0;
  StateStruct first_;
  StateStruct second_;

  // Arc lines since the previous event pair, put into an exactly sized arc when the next
  // pair closes it: their epoch and thrust, four numbers a line, up to a bound; past it
  // only where they start, and they are read again from the text when the arc closes
  // (lines after a ship's last event, which close no arc, then cost no memory).
  int arc_first_line_ = -1;
  int arc_last_line_ = -1;
  std::size_t arc_count_ = 0;
  const char* arc_begin_ = nullptr;
  bool arc_deferred_ = false;
  std::vector<double> arc_pending_;
  std::vector<DmStructShip> group_;  // collections since the last Earth drop
};

}  // namespace kavren
