#include <cmath>
#include <iostream>
#include <string_view>
#include <vector>

#include "astro/ephemeris.h"
#include "readers/solution_lines.h"
#include "readers/tokenizer.h"

namespace kavren {
namespace {

constexpr double kDropVinfLimit = 6.001;   // km/s; looser than the 6.0 of the message
constexpr double kMassChangeTolerance = 0.001;  // kg

class ShipAssembler {
 public:
  ShipAssembler(const SolutionText& solution, int ordinal, ShipClass& ship)
      : solution_(solution), ordinal_(ordinal), ship_(ship) {}

  bool run(int first, int end) {
    ship_.ship_id = ordinal_;
    int launch_id = 0;
    decode(first, launch_id, ship_.launch.state_before);
    decode(first + 1, launch_id, ship_.launch.state_after);
    ship_.launch.body_id = launch_id;

    previous_ = ship_.launch.state_after;
    previous_index_ = first + 1;
    for (int index = first + 2; index < end; ++index) {
      if (!solution_.lines[static_cast<std::size_t>(index)].is_event) continue;
      // Event lines come in adjacent pairs of one kind (checked before assembly); a
      // first line at the ship's end cannot occur, and is never read past.
      if (index + 1 >= end) break;
      if (!add_event_pair(index)) return false;
      ++index;
    }
    // Arc lines after the last event pair close no arc and are ignored; the final mass
    // is that of the ship's last event line.
    ship_.set_final_mass(previous_.mass);
    return true;
  }

 private:
  void decode(int index, int& event_id, StateStruct& state) {
    tokenize_line(solution_.text(index), tokens_);
    double epoch = 0.0;
    decode_event_line(index, tokens_, event_id, epoch, state);
  }

  bool add_event_pair(int index) {
    int event_id = 0;
    int second_id = 0;
    StateStruct first;
    StateStruct second;
    decode(index, event_id, first);
    decode(index + 1, second_id, second);

    if (first.epoch <= previous_.epoch) {
      std::cout << "Error005. Event Time Error on the line" << index + 1
                << ": The epoch of the launch, rendezvous, or flyby is earlier than the epoch "
                   "of last launch, rendezvous, or flyby."
                << std::endl;
      return false;
    }
    if (!record_event(event_id, first, second)) return false;
    if (!add_arc(index, first)) return false;
    previous_ = second;
    previous_index_ = index + 1;
    return true;
  }

  bool record_event(int event_id, const StateStruct& first, const StateStruct& second) {
    const double mass_change = second.mass - first.mass;
    if (event_id < 0) {
      FlybyClass flyby;
      flyby.body_id = event_id;
      flyby.state_before = first;
      flyby.state_after = second;
      flyby.mass_change = mass_change;
      ship_.flybys.push_back(flyby);
      if (event_id == -3) return record_earth_drop(first, second, mass_change);
      return true;
    }
    VisitClass visit;
    visit.body_id = event_id;
    visit.state_before = first;
    visit.state_after = second;
    visit.mass_change = mass_change;
    ship_.visits.push_back(visit);
    // Resources taken on join the current group; miners left behind add nothing.
    if (mass_change > 0.0) group_.push_back(DmStructShip{second.line_index, mass_change, first.epoch});
    return true;
  }

  // Resources are dropped at Earth flybys slow enough for the drop; the drop closes
  // the current group of collections.
  bool record_earth_drop(const StateStruct& first, const StateStruct& second,
                         double mass_change) {
    const double vinf = get_vinf(-3, first);
    if (vinf <= kDropVinfLimit) {
      group_.push_back(DmStructShip{second.line_index, mass_change, first.epoch});
      ship_.dm_groups.push_back(std::move(group_));
      group_.clear();
      return true;
    }
    if (std::fabs(mass_change) <= kMassChangeTolerance) return true;
    std::cout << "Error806. Mining Data Error on the line" << first.line_index + 1
              << ": The hyperbolic excess velocity of the ship relative to the Earth should "
                 "not be larger than 6.0 km/s  at the moment of dropping resources."
              << std::endl;
    return false;
  }

  // The arc from the previous event's second line to this event's first line.
  bool add_arc(int index, const StateStruct& first) {
    const int gap = index - previous_index_;
    if (gap >= 2 && gap <= 4) {
      // This message prints the 0-based index of the line that opens the arc.
      std::cout << "ErrorA03:  File Format Error on the line " << previous_index_
                << ": The number of lines in this burning arc is unreasonable." << std::endl;
      return false;
    }
    BurningArc arc;
    arc.ship_number = ordinal_;
    arc.start_epoch = previous_.epoch;
    arc.end_epoch = first.epoch;
    arc.start_state = previous_;
    arc.end_state = first;
    if (gap >= 5) {
      arc.first_line = previous_index_ + 1;
      arc.last_line = index - 1;
      const std::size_t count = static_cast<std::size_t>(gap - 1);
      arc.lines.reserve(count);
      arc.values.reserve(count);
      for (int line = arc.first_line; line <= arc.last_line; ++line) {
        tokenize_line(solution_.text(line), tokens_);
        arc.lines.push_back({parse_double(tokens_[3]), parse_double(tokens_[4]),
                             parse_double(tokens_[5])});
        arc.values.push_back(solution_.lines[static_cast<std::size_t>(line)].epoch);
      }
    }
    ship_.burning_arcs.push_back(std::move(arc));
    return true;
  }

  const SolutionText& solution_;
  const int ordinal_;
  ShipClass& ship_;
  StateStruct previous_;
  int previous_index_ = 0;
  std::vector<DmStructShip> group_;  // collections since the last Earth drop
  std::vector<std::string_view> tokens_;
};

}  // namespace

bool assemble_ship(const SolutionText& solution, int ordinal, int first, int end,
                   ShipClass& ship) {
  return ShipAssembler(solution, ordinal, ship).run(first, end);
}

}  // namespace kavren
