#include "readers/ship_assembly.h"

#include <cmath>
#include <cstring>
#include <iterator>
#include <utility>

#include "astro/ephemeris.h"
#include "kavren/limits.h"
#include "readers/tokenizer.h"

namespace kavren {
namespace {

std::string_view token(const std::vector<std::string_view>& tokens, std::size_t k) {
  return k < tokens.size() ? tokens[k] : std::string_view();
}

// Calls f(epoch, ux, uy, uz) for each of `count` lines of `text` (lines split at line
// breaks, each trimmed and tokenized as the reader does).
template <class F>
void for_each_arc_line(std::string_view text, std::size_t count, F&& f) {
  std::vector<std::string_view> tokens;
  const char* p = text.data();
  const char* const end = p + text.size();
  for (std::size_t n = 0; n < count && p <= end; ++n) {
    const void* newline = std::memchr(p, '\n', static_cast<std::size_t>(end - p));
    const char* stop = newline != nullptr ? static_cast<const char*>(newline) : end;
    tokenize_line(trimmed_line(std::string_view(p, static_cast<std::size_t>(stop - p))), tokens);
    f(parse_double(token(tokens, 2)), parse_double(token(tokens, 3)),
      parse_double(token(tokens, 4)), parse_double(token(tokens, 5)));
    p = stop + 1;
  }
}

std::size_t line_count(const BurningArc& arc) {
  return arc.first_line < 0
             ? 0
             : static_cast<std::size_t>(static_cast<long long>(arc.last_line) - arc.first_line + 1);
}

}  // namespace

void read_arc_numbers(const BurningArc& arc, std::vector<double>& numbers) {
  numbers.clear();
  for_each_arc_line(arc.text, line_count(arc), [&numbers](double t, double x, double y, double z) {
    numbers.push_back(t);
    numbers.push_back(x);
    numbers.push_back(y);
    numbers.push_back(z);
  });
}

ShipAssembler::ShipAssembler(int ordinal, ShipClass& ship, Findings& findings, bool arcs_in_text)
    : ordinal_(ordinal), ship_(ship), findings_(findings), arcs_in_text_(arcs_in_text) {
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
  // A burning-arc line: only where its text lies.
  if (arc_first_line_ < 0) {
    arc_first_line_ = index;
    arc_begin_ = text.data();
  }
  arc_last_line_ = index;
  arc_end_ = text.data() + text.size();
  return true;
}

void ShipAssembler::finish() {
  ship_.set_final_mass(previous_.mass);
}

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
  if (mass_change > 0.0)
    group_.push_back(DmStructShip{second_.line_index, mass_change, first_.epoch});
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
    ship_.flybys.back().drop = true;
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
    findings_.fail(Rule::arc_line_count,
                   line_message("ErrorA03:  File Format Error on the line ", previous_.line_index,
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
  if (arc_first_line_ >= 0) {
    arc.first_line = arc_first_line_;
    arc.last_line = arc_last_line_;
    arc.text = std::string_view(arc_begin_, static_cast<std::size_t>(arc_end_ - arc_begin_));
    if (!arcs_in_text_) {
      const std::size_t count = line_count(arc);
      arc.values.reserve(count);
      arc.lines.reserve(count);
      for_each_arc_line(arc.text, count, [&arc](double t, double x, double y, double z) {
        arc.values.push_back(t);
        arc.lines.push_back({x, y, z});
      });
      arc.text = std::string_view();
    }
  }
  ship_.burning_arcs.push_back(std::move(arc));
  arc_first_line_ = -1;
  arc_last_line_ = -1;
  arc_begin_ = nullptr;
  arc_end_ = nullptr;
  return true;
}

}  // namespace kavren
