#include "session/ship_work.h"

#include "core/ship_checks.h"
#include "lowthrust/arc_stage.h"
#include "readers/ship_assembly.h"

namespace kavren {
namespace {

void shift(StateStruct& state, long long line_shift) {
  state.line_index = static_cast<int>(state.line_index + line_shift);
}

void shift(std::vector<int>& indices, long long line_shift) {
  for (int& index : indices) index = static_cast<int>(index + line_shift);
}

template <class T>
std::size_t bytes_of(const std::vector<T>& v) {
  return v.capacity() * sizeof(T);
}

// As a run of the whole file: a ship whose reading or assembly ended the reading goes no
// further; after a finding of its assembly or its events, a run that stops at the first
// goes no further either.
void check_events_and_arcs(const Catalogue& catalogue, const ShipWorkOptions& options,
                           ShipWork& work) {
  const bool first = options.mode == Mode::first;
  ShipLines& read = work.read;
  work.events = Findings(first);
  work.arcs = Findings(first);
  if (read.reading_ended || read.assembly_ended || (read.assembly.any() && first)) return;
  work.events_checked = true;
  EventContext context{work.events, catalogue.table().rows(), work.ordinal};
  check_ship(read.ship, context);
  if (work.events.any() && first) return;

  work.arcs_checked = true;
  ArcStageOptions arc_options;
  arc_options.workers = options.workers;
  arc_options.trajectories = options.trajectories;
  arc_options.inspect_steps = !first;
  arc_options.deadline = options.deadline;
  arc_options.progress = options.progress;
  arc_options.read_numbers = read_arc_numbers;
  ArcStageResult result;
  check_arcs({read.ship}, work.arcs, arc_options, result);
  if (result.deadline_reached) throw DeadlineReached{};
  work.thrust_phases = result.thrust_phases.empty() ? 0 : result.thrust_phases[0];
  if (!result.trajectories.empty())
    work.trajectory.points = std::move(result.trajectories[0].points);
  work.evaluations = result.evaluations;
  work.arc_count = result.arcs;
}

}  // namespace

bool ShipWork::movable() const {
  return !read.found.any() && !read.assembly.any() && !events.any() && !arcs.any();
}

void ShipWork::relocate(long long line_shift, int new_ordinal) {
  first_index = static_cast<int>(first_index + line_shift);
  ordinal = new_ordinal;
  EventLists& lists = read.lists;
  for (std::vector<int>* list : {&lists.launches, &lists.venus, &lists.earth, &lists.mars,
                                 &lists.rendezvous, &lists.ship_starts}) {
    shift(*list, line_shift);
  }
  read.found.relocate(line_shift, new_ordinal);
  read.assembly.relocate(line_shift, new_ordinal);
  events.relocate(line_shift, new_ordinal);
  arcs.relocate(line_shift, new_ordinal);
  trajectory.ship = new_ordinal;

  ShipClass& ship = read.ship;
  ship.ship_id = new_ordinal;
  shift(ship.launch.state_before, line_shift);
  shift(ship.launch.state_after, line_shift);
  for (FlybyClass& flyby : ship.flybys) {
    shift(flyby.state_before, line_shift);
    shift(flyby.state_after, line_shift);
  }
  for (VisitClass& visit : ship.visits) {
    shift(visit.state_before, line_shift);
    shift(visit.state_after, line_shift);
  }
  for (std::vector<DmStructShip>& group : ship.dm_groups) {
    for (DmStructShip& entry : group)
      entry.line_index = static_cast<int>(entry.line_index + line_shift);
  }
}

std::size_t ShipWork::footprint() const {
  const EventLists& lists = read.lists;
  const ShipClass& ship = read.ship;
  std::size_t bytes = sizeof(ShipWork) + bytes_of(lists.launches) + bytes_of(lists.venus) +
                      bytes_of(lists.earth) + bytes_of(lists.mars) + bytes_of(lists.rendezvous) +
                      bytes_of(lists.rendezvous_ids) + bytes_of(lists.ship_starts) +
                      bytes_of(ship.flybys) + bytes_of(ship.visits) + bytes_of(trajectory.points) +
                      bytes_of(ship.dm_groups);
  for (const std::vector<DmStructShip>& group : ship.dm_groups) bytes += bytes_of(group);
  // Four collectors of one row per rule, their findings and warnings.
  bytes += 4 * static_cast<std::size_t>(Rule::count) * 64;
  return bytes;
}

void verify_ship(const Catalogue& catalogue, std::string_view text, int first_index, int ordinal,
                 const ShipWorkOptions& options, ShipWork& work) {
  work = ShipWork();
  work.first_index = first_index;
  work.ordinal = ordinal;
  work.trajectory.ship = ordinal;
  read_ship_lines(text, first_index, ordinal, options.mode == Mode::first, work.read);
  check_events_and_arcs(catalogue, options, work);
  // Nothing after the arcs reads them, and their lines belong to the caller's text.
  work.read.ship.burning_arcs = std::vector<BurningArc>();
}

}  // namespace kavren
