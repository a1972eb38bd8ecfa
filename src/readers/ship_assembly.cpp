#include "readers/ship_assembly.h"

#include <cmath>
#include <cstring>
#include <iterator>
#include <utility>

#include "astro/ephemeris.h"
#include "readers/tokenizer.h"
#include "records/limits.h"

namespace kavren {
namespace {

// Numbers of pending arc lines kept before they are left in the text (65,536 lines).
constexpr std::size_t kMaxPendingNumbers = 4u << 16;

std::string_view token(const std::vector<std::string_view>& tokens, std::size_t k) {
  return k < tokens.size() ? tokens[k] : std::string_view();
}

}  // namespace

ShipAssembler::ShipAssembler(int ordinal, ShipClass& ship, Findings& findings,
                             std::string_view text)
    : ordinal_(ordinal), ship_(ship), findings_(findings), text_end_(text.data() + text.size()) {
  ship_.ship_id = ordinal;
}

bool ShipAssembler::add_line(int index, std::string_view text,
                             const std::vector<std::string_view>& tokens) {
  const int seen = lines_seen_++;
  double epoch = 0.0;
  if (seen < 2) {
    StateStruct& state = seen == 0 ? ship_.launch.state_before : ship_.launch.state_after;
    decode_event_line(index, tokens, ship_.launch.body_id, epoch, state);
    previous_ = ship_.launch.state_after;
    return true;
  }
  if (tokens.size() == 10) {
    if (!first_pending_) {
      decode_event_line(index, tokens, first_id_, epoch, first_);
      first_pending_ = true;
      return true;
    }
    decode_event_line(index, tokens, second_id_, epoch, second_);
    first_pending_ = false;
    return add_event_pair();
  }
  // A burning-arc line: epoch and thrust vector.
  if (arc_first_line_ < 0) {
    arc_first_line_ = index;
    arc_begin_ = text.data();
  }
  arc_last_line_ = index;
  ++arc_count_;
  if (arc_deferred_) return true;
  if (arc_pending_.size() >= kMaxPendingNumbers) {
    arc_deferred_ = true;
    std::vector<double>().swap(arc_pending_);
    return true;
  }
  for (std::size_t k = 2; k < 6; ++k) arc_pending_.push_back(parse_double(token(tokens, k)));
  return true;
}

void ShipAssembler::take_arc_lines(BurningArc& arc) {
  arc.values.reserve(arc_count_);
  arc.lines.reserve(arc_count_);
  if (!arc_deferred_) {
    for (std::size_t k = 0; k + 3 < arc_pending_.size(); k += 4) {
      arc.values.push_back(arc_pending_[k]);
      arc.lines.push_back({arc_pending_[k + 1], arc_pending_[k + 2], arc_pending_[k + 3]});
    }
    return;
  }
  // The lines again, from where the first one's text starts, up to the end of the text.
  const char* p = arc_begin_;
  const char* const end = text_end_;
  for (std::size_t n = 0; n < arc_count_ && p <= end; ++n) {
    const char* newline = static_cast<const char*>(std::memchr(p, '\n', static_cast<std::size_t>(end - p)));
    const char* stop = newline != nullptr ? newline : end;
    tokenize_line(trimmed_line(std::string_view(p, static_cast<std::size_t>(stop - p))), tokens_);
    arc.values.push_back(parse_double(token(tokens_, 2)));
    arc.lines.push_back({parse_double(token(tokens_, 3)), parse_double(token(tokens_, 4)),
                         parse_double(token(tokens_, 5))});
    p = stop + 1;
  }
}

void ShipAssembler::finish() { ship_.set_final_mass(previous_.mass); }

bool ShipAssembler::add_event_pair() {
  // The order within a pair: its epoch, its own record, then the arc lines before it.
  const long long line = printed_line(first_.line_index);
  if (!findings_.check(Rule::event_order, !(first_.epoch <= previous_.epoch),
                       first_.epoch - previous_.epoch, 0.0,
                       {line, printed_line(previous_.line_index)}, ordinal_, [&] {
                         return line_message("Error005. Event Time Error on the line", line,
                                             ": The epoch of the launch, rendezvous, or flyby "
                                             "is earlier than the epoch of last launch, "
                                             "rendezvous, or flyby.");
                       })) {
    return false;
  }
  if (!record_event(first_id_)) return false;
  if (!close_arc()) return false;
  previous_ = second_;
  return true;
}

bool ShipAssembler::record_event(int event_id) {
  const double mass_change = second_.mass - first_.mass;
  if (event_id < 0) {
    FlybyClass flyby;
    flyby.body_id = event_id;
    flyby.state_before = first_;
    flyby.state_after = second_;
    flyby.mass_change = mass_change;
    ship_.flybys.push_back(flyby);
    if (event_id == -3) return record_earth_drop(mass_change);
    return true;
  }
  VisitClass visit;
  visit.body_id = event_id;
  visit.state_before = first_;
  visit.state_after = second_;
  visit.mass_change = mass_change;
  ship_.visits.push_back(visit);
  // Resources taken on join the current group; miners left behind add nothing.
  if (mass_change > 0.0) group_.push_back(DmStructShip{second_.line_index, mass_change, first_.epoch});
  return true;
}

// Resources are dropped at Earth flybys slow enough for it; a drop closes the current
// group of collections, which it must balance.
bool ShipAssembler::record_earth_drop(double mass_change) {
  // The Earth's state needs no catalogue.
  const double vinf = speed_relative_to_body(-3, first_.epoch, first_.v, nullptr);
  const long long line = printed_line(first_.line_index);
  if (vinf <= kMaxExcessSpeed) {
    findings_.evaluate(Rule::drop_speed, true, vinf, kMaxExcessSpeed, line, ordinal_);
    group_.push_back(DmStructShip{second_.line_index, mass_change, first_.epoch});
    ship_.dm_groups.push_back(std::move(group_));
    group_.clear();
    return true;
  }
  if (std::fabs(mass_change) <= kMassTolerance) return true;  // an ordinary flyby
  // Too fast to drop: the pair stays an ordinary flyby for a collector that goes on.
  return findings_.check(Rule::drop_speed, false, vinf, kMaxExcessSpeed,
                         {line, printed_line(second_.line_index)}, ordinal_, [&] {
                           return line_message(
                               "Error806. Mining Data Error on the line", line,
                               ": The hyperbolic excess velocity of the ship relative to the "
                               "Earth should not be larger than 6.0 km/s  at the moment of "
                               "dropping resources.");
                         });
}

// The arc from the previous event's second line to this event's first line: no lines
// (a pure coast) or at least four.
bool ShipAssembler::close_arc() {
  const int gap = first_.line_index - previous_.line_index;
  if (gap >= 2 && gap <= 4) {
    // This message prints the 0-based index of the line that opens the arc.
    findings_.fail(Rule::count,
                   line_message("ErrorA03:  File Format Error on the line ",
                                previous_.line_index,
                                ": The number of lines in this burning arc is unreasonable."),
                   {printed_line(previous_.line_index)}, ordinal_);
    return false;
  }
  BurningArc arc;
  arc.ship_number = ordinal_;
  arc.start_epoch = previous_.epoch;
  arc.end_epoch = first_.epoch;
  arc.start_state = previous_;
  arc.end_state = first_;
  if (arc_count_ > 0) {
    arc.first_line = arc_first_line_;
    arc.last_line = arc_last_line_;
    take_arc_lines(arc);
  }
  ship_.burning_arcs.push_back(std::move(arc));
  arc_first_line_ = -1;
  arc_last_line_ = -1;
  arc_count_ = 0;
  arc_begin_ = nullptr;
  arc_deferred_ = false;
  arc_pending_.clear();
  return true;
}

}  // namespace kavren
