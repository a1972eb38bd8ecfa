// A session: the ships of a candidate found in the text, each taken from the cache when
// its bytes were verified before, else verified on its own; then the stages of a run put
// together from the ships' collectors, in the order one verification of the whole file
// appends them.
#include "kavren/session.h"

#include <climits>
#include <cstring>
#include <new>
#include <string>
#include <vector>

#include "astro/ephemeris.h"
#include "core/summary.h"
#include "mining/ledger.h"
#include "mining/score.h"
#include "readers/numbers.h"
#include "readers/tokenizer.h"
#include "session/ship_cache.h"

namespace kavren {
namespace {

using WorkPtr = std::shared_ptr<const ShipWork>;

// Past this size a text is verified whole: its line indices could reach the 32-bit
// limit, which only the reading of the whole file reports as it does.
constexpr std::size_t kLargestText = INT_MAX / 2;

std::size_t next_line(std::string_view text, std::size_t at) {
  const void* newline = std::memchr(text.data() + at, '\n', text.size() - at);
  return newline == nullptr
             ? text.size()
             : static_cast<std::size_t>(static_cast<const char*>(newline) - text.data()) + 1;
}

// The ship ID of the line starting at `at` as the reader reads it from a well-formed line:
// the first token of the trimmed line.
int ship_id_at(std::string_view text, std::size_t at) {
  const std::size_t end = next_line(text, at);
  const std::string_view line = trimmed_line(text.substr(at, end - at));
  std::size_t length = 0;
  while (length < line.size() && line[length] != ' ' && line[length] != '\t') ++length;
  return parse_int(line.substr(0, length));
}

// Where the run of lines of ship `id` that starts at `begin` seems to end, found in a few
// probes, assuming the lines of one ship are together. Only a guess: the cache confirms
// it, since it holds runs read line by line.
std::size_t guess_ship_end(std::string_view text, std::size_t begin, int id, std::size_t hint) {
  if (hint > 0 && hint <= text.size() - begin) {
    const std::size_t end = begin + hint;
    if (end == text.size() || (text[end - 1] == '\n' && ship_id_at(text, end) != id)) return end;
  }
  // Doubling steps to a line of another ship, then halving back to the first one.
  std::size_t low = begin, high = text.size(), step = 4096;
  while (true) {
    if (step >= text.size() - low) break;
    const std::size_t probe = next_line(text, low + step);
    if (probe >= text.size()) break;
    if (ship_id_at(text, probe) != id) {
      high = probe;
      break;
    }
    low = probe;
    step *= 2;
  }
  while (true) {
    const std::size_t after = next_line(text, low);
    if (after >= high) return high;
    std::size_t mid = next_line(text, low + (high - low) / 2 - 1);
    if (mid >= high) mid = after;
    if (ship_id_at(text, mid) == id) {
      low = mid;
    } else {
      high = mid;
    }
  }
}

}  // namespace

struct Session::State {
  Catalogue catalogue;
  ShipCache cache;
  std::vector<std::size_t> lengths;  // the ships' lengths in the last text, as hints
  std::vector<DmStructAsteroid> ledger_table;

  State(Catalogue c, std::size_t bound) : catalogue(std::move(c)), cache(bound) {}

  Report verify(std::string_view text, const Options& options);
  void read_ships(std::string_view text, const Options& options,
                  const DeadlineClock::time_point* deadline, std::vector<WorkPtr>& works,
                  Statistics& statistics);
};

namespace {

// The stages of a run over the ships' collectors (see core/verify.cpp: the same order,
// the same places to stop).
struct Assembly {
  Findings findings;
  std::vector<ShipClass> ships;
  int num_ships = 0;
  std::vector<StoreDmStruct> store;
  double total_resource_mass = 0.0;
  std::vector<int> thrust_phases;
  std::vector<Trajectory> trajectories;

  // The ledger's table by asteroid, all zero between verifications.
  std::vector<DmStructAsteroid>& ledger_table;

  Assembly(bool stop_at_first, std::vector<DmStructAsteroid>& table)
      : findings(stop_at_first), ledger_table(table) {}

  bool check_ledger() {
    if (ledger_table.size() != kNumAsteroids) ledger_table.assign(kNumAsteroids, {});
    // The ledger writes only the rows of the asteroids met: those are zeroed again.
    struct Zero {
      Assembly& run;
      ~Zero() {
        for (const ShipClass& ship : run.ships) {
          for (const VisitClass& visit : ship.visits) {
            if (visit.body_id >= 1 && visit.body_id <= kNumAsteroids) {
              run.ledger_table[static_cast<std::size_t>(visit.body_id) - 1] = {};
            }
          }
        }
      }
    } zero{*this};
    return check_mining_ledger(ships, num_ships, ledger_table, store, findings);
  }

  bool stages(const std::vector<WorkPtr>& works, const Options& options,
              const DeadlineClock::time_point* deadline) {
    EventLists lists;
    for (const WorkPtr& work : works) {
      findings.merge(work->read.found);
      if (work->read.reading_ended || findings.stopped()) return false;
      const EventLists& own = work->read.lists;
      for (auto [from, to] :
           {std::pair{&own.launches, &lists.launches}, std::pair{&own.venus, &lists.venus},
            std::pair{&own.earth, &lists.earth}, std::pair{&own.mars, &lists.mars},
            std::pair{&own.rendezvous, &lists.rendezvous},
            std::pair{&own.rendezvous_ids, &lists.rendezvous_ids},
            std::pair{&own.ship_starts, &lists.ship_starts}}) {
        to->insert(to->end(), from->begin(), from->end());
      }
    }
    if (!check_structure(lists, findings)) return false;
    num_ships = static_cast<int>(works.size());

    // The ships assembled: up to one whose assembly ended the reading.
    std::size_t assembled = 0;
    while (assembled < works.size() && !works[assembled]->read.assembly_ended) {
      ships.push_back(works[assembled]->read.ship);
      ++assembled;
    }
    for (std::size_t k = 0; k < works.size() && k <= assembled; ++k) {
      findings.merge(works[k]->read.assembly);
      if (findings.stopped()) return false;
    }
    if (assembled < works.size()) return false;

    for (const WorkPtr& work : works) {
      if (!work->events_checked) continue;
      findings.merge(work->events);
      if (findings.stopped()) return false;
    }
    honour_deadline(deadline);
    if (!check_ledger()) return false;

    honour_deadline(deadline);
    thrust_phases.assign(works.size(), 0);
    if (options.trajectories) trajectories.resize(works.size());
    for (std::size_t k = 0; k < works.size(); ++k) {
      const ShipWork& work = *works[k];
      thrust_phases[k] = work.thrust_phases;
      if (options.trajectories) trajectories[k] = work.trajectory;
      findings.merge(work.arcs);
      if (findings.stopped()) {
        for (std::size_t later = k + 1; options.trajectories && later < works.size(); ++later) {
          trajectories[later].ship = works[later]->ordinal;
        }
        return false;
      }
    }
    return check_ship_count(num_ships, store, total_resource_mass, findings);
  }
};

}  // namespace

void Session::State::read_ships(std::string_view text, const Options& options,
                                const DeadlineClock::time_point* deadline,
                                std::vector<WorkPtr>& works, Statistics& statistics) {
  ShipWorkOptions ship_options;
  ship_options.mode = options.mode;
  ship_options.trajectories = options.trajectories;
  ship_options.workers = options.workers > 0 ? options.workers : default_workers();
  ship_options.deadline = deadline;
  std::size_t arcs_done = 0;
  if (options.progress) {
    ship_options.progress = [&](std::size_t done, std::size_t total) {
      options.progress(arcs_done + done, arcs_done + total);
    };
  }
  std::vector<std::size_t> seen_lengths;
  std::size_t at = 0;
  int index = 0;
  while (at < text.size()) {
    honour_deadline(deadline);
    const int ordinal = static_cast<int>(works.size()) + 1;
    const std::size_t hint = works.size() < lengths.size() ? lengths[works.size()] : 0;
    const std::size_t end = guess_ship_end(text, at, ship_id_at(text, at), hint);
    ShipKey key{fingerprint(text.substr(at, end - at)), options.mode, options.trajectories};
    WorkPtr work = cache.find(key);
    if (work && (work->first_index != index || work->ordinal != ordinal)) {
      if (work->movable()) {
        auto moved = std::make_shared<ShipWork>(*work);
        moved->relocate(static_cast<long long>(index) - work->first_index, ordinal);
        work = moved;
        cache.put(key, work);
      } else {
        work = nullptr;
      }
    }
    if (work) {
      ++statistics.ships_cached;
    } else {
      auto fresh = std::make_shared<ShipWork>();
      verify_ship(catalogue, text.substr(at), index, ordinal, ship_options, *fresh);
      arcs_done += fresh->arc_count;
      statistics.derivative_evaluations += fresh->evaluations;
      statistics.arcs += fresh->arc_count;
      ++statistics.ships_verified;
      work = fresh;
      if (!fresh->read.reading_ended) {
        if (fresh->read.bytes != end - at)
          key.bytes = fingerprint(text.substr(at, fresh->read.bytes));
        cache.put(key, work);
      }
    }
    works.push_back(work);
    seen_lengths.push_back(work->read.bytes);
    statistics.lines += static_cast<std::size_t>(work->read.lines);
    if (work->read.reading_ended) break;
    at += work->read.bytes;
    index += work->read.lines;
  }
  lengths = std::move(seen_lengths);
}

Report Session::State::verify(std::string_view text, const Options& options) {
  if ((options.max_bytes > 0 && text.size() > options.max_bytes) || text.empty() ||
      text.size() > kLargestText) {
    return kavren::verify(catalogue, text, options);
  }
  Report report;
  const DeadlineClock::time_point limit = DeadlineClock::now() + options.deadline;
  const DeadlineClock::time_point* deadline = options.deadline.count() > 0 ? &limit : nullptr;
  try {
    std::vector<WorkPtr> works;
    Assembly run(options.mode == Mode::first, ledger_table);
    try {
      read_ships(text, options, deadline, works, report.statistics);
      run.stages(works, options, deadline);
    } catch (const DeadlineReached&) {
      report = Report();
      report.outcome = Outcome::limit_reached;
      report.error = "the deadline of " + std::to_string(options.deadline.count()) +
                     " ms passed while the solution was verified";
      return report;
    }
    conclude(run.findings, run.ships, run.num_ships, run.store, run.total_resource_mass,
             run.thrust_phases, report);
    report.trajectories = std::move(run.trajectories);
  } catch (const std::bad_alloc&) {
    report = Report();
    report.outcome = Outcome::out_of_memory;
    report.error = "out of memory while verifying the solution";
  }
  return report;
}

Session::Session(Catalogue catalogue, std::size_t cache_bytes)
    : state_(std::make_unique<State>(std::move(catalogue), cache_bytes)) {}
Session::~Session() = default;
Session::Session(Session&&) noexcept = default;
Session& Session::operator=(Session&&) noexcept = default;

Report Session::verify(std::string_view solution_text, const Options& options) {
  return state_->verify(solution_text, options);
}

std::size_t Session::cached_ships() const {
  return state_->cache.entries();
}

std::size_t Session::cache_bytes() const {
  return state_->cache.bytes();
}

void Session::clear() {
  state_->cache.clear();
  state_->lengths.clear();
}

}  // namespace kavren
