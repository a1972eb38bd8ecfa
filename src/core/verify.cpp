// One verification: the stages of a run in their fixed order, each adding to one
// collector of findings, then the verdict kavren-check would print and the report.
#include "kavren/verify.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <new>
#include <sstream>
#include <thread>
#include <type_traits>
#include <vector>

#include "astro/ephemeris.h"
#include "core/ship_checks.h"
#include "core/summary.h"
#include "lowthrust/arc_integration.h"
#include "lowthrust/arc_stage.h"
#include "mining/ledger.h"
#include "mining/score.h"
#include "readers/catalogue.h"
#include "readers/file_bytes.h"
#include "readers/ship_assembly.h"
#include "readers/solution_reader.h"

namespace kavren {

Catalogue::Catalogue(std::shared_ptr<const AsteroidTable> table) : table_(std::move(table)) {}

Catalogue Catalogue::from_file(const std::string& path) {
  std::string bytes;
  if (!read_file_bytes(path.c_str(), bytes)) {
    throw InputError("cannot read the catalogue " + path + ": no such file or not readable");
  }
  return from_text(bytes);
}

Catalogue Catalogue::from_text(std::string_view text) {
  auto table = std::make_shared<AsteroidTable>();
  read_catalogue(text, *table);
  return Catalogue(std::move(table));
}

namespace {

// The stages, with the verdict of checking them one after the other: the lines, the
// grouping, each ship's assembly, each ship's events, the mining ledger, the arcs, the
// ship count. While the file is read, each ship is assembled, its events checked and its
// arcs started as soon as its last line is in, each into a collector of its own; the
// collectors are appended in that order once what comes before them stands.
struct Run : ShipSink {
  const Catalogue& catalogue;
  const Options& options;
  Findings findings;
  std::vector<ShipClass> ships;
  int num_ships = 0;
  std::vector<StoreDmStruct> store;
  double total_resource_mass = 0.0;
  ArcStageResult arcs;
  DeadlineClock::time_point deadline;

  // Per ship read: what its assembly and its events found.
  std::vector<Findings> assembled;
  std::vector<Findings> events;
  bool reading_ended = false;
  // A run that stops at its first finding needs nothing after a ship that failed.
  bool doomed = false;
  std::unique_ptr<ArcPipeline> pipeline;

  Run(const Catalogue& c, const Options& o)
      : catalogue(c), options(o), findings(o.mode == Mode::first) {}

  // Null without a deadline.
  const DeadlineClock::time_point* limit() const {
    return options.deadline.count() > 0 ? &deadline : nullptr;
  }
  // Between stages: a verification past its deadline ends there.
  void check_deadline() const { honour_deadline(limit()); }

  void ship_read(ShipClass&& ship, Findings&& assembly, bool ended) override {
    const bool failed = assembly.any();
    assembled.push_back(std::move(assembly));
    if (ended) {
      reading_ended = true;
      return;
    }
    // Moving a ship leaves its arcs where they are: the pipeline may hold them.
    static_assert(std::is_nothrow_move_constructible<ShipClass>::value,
                  "ships move without copying their arcs");
    ships.push_back(std::move(ship));
    if (doomed || (failed && findings.stop_at_first())) {
      doomed = true;
      return;
    }
    ShipClass& held = ships.back();
    Findings found(findings.stop_at_first());
    EventContext context{found, catalogue.table().rows(), held.ship_id};
    check_ship(held, context);
    const bool events_failed = found.any();
    events.push_back(std::move(found));
    if (events_failed && findings.stop_at_first()) {
      doomed = true;
      pipeline->cancel();
      return;
    }
    pipeline->add_ship(held);
  }

  bool all_stages(std::string_view text) {
    const bool passed = stages(text);
    if (!passed) pipeline->cancel();
    return passed;
  }

  bool stages(std::string_view text) {
    ArcStageOptions arc_options;
    arc_options.workers = options.workers > 0 ? options.workers : default_workers();
    arc_options.trajectories = options.trajectories;
    arc_options.inspect_steps = options.mode == Mode::all;
    arc_options.deadline = limit();
    arc_options.progress = options.progress;
    arc_options.read_numbers = read_arc_numbers;
    pipeline = std::make_unique<ArcPipeline>(arc_options, findings.stop_at_first());

    // The arcs' lines stay in the text, read where each arc is verified.
    if (!scan_solution(text, findings, num_ships, *this, limit(), true)) {
      // The ships read ahead do not stand.
      pipeline->cancel();
      ships.clear();
      return false;
    }
    for (Findings& found : assembled) {
      findings.merge(std::move(found));
      if (findings.stopped()) return false;
    }
    if (reading_ended) return false;
    // The ship checks run over the reported count, never past the ships actually held.
    const int checked = std::min(num_ships, static_cast<int>(ships.size()));
    for (int index = 0; index < checked && index < static_cast<int>(events.size()); ++index) {
      findings.merge(std::move(events[static_cast<std::size_t>(index)]));
      if (findings.stopped()) return false;
    }
    check_deadline();
    std::vector<DmStructAsteroid> dm_asteroids(kNumAsteroids);
    if (!check_mining_ledger(ships, checked, dm_asteroids, store, findings)) return false;

    check_deadline();
    if (!pipeline->finish(findings, arcs)) return false;
    return check_ship_count(num_ships, store, total_resource_mass, findings);
  }
};

// Lines as the reader counts them: a last line without a line break is one.
std::size_t count_lines(std::string_view text) {
  std::size_t lines = 0;
  const char* p = text.data();
  const char* const end = p + text.size();
  while (p < end) {
    const void* newline = std::memchr(p, '\n', static_cast<std::size_t>(end - p));
    ++lines;
    if (newline == nullptr) break;
    p = static_cast<const char*>(newline) + 1;
  }
  return lines;
}

void limit_reached(Report& report, std::string reason) {
  report.outcome = Outcome::limit_reached;
  report.error = std::move(reason);
}

}  // namespace

Report verify(const Catalogue& catalogue, std::string_view solution_text, const Options& options) {
  Report report;
  if (options.max_bytes > 0 && solution_text.size() > options.max_bytes) {
    limit_reached(report, "the solution holds " + std::to_string(solution_text.size()) +
                              " bytes, more than the limit of " +
                              std::to_string(options.max_bytes));
    return report;
  }
  try {
    Run run(catalogue, options);
    run.deadline = DeadlineClock::now() + options.deadline;
    bool deadline_reached = false;
    try {
      run.all_stages(solution_text);
    } catch (const DeadlineReached&) {
      deadline_reached = true;
    }
    if (deadline_reached || run.arcs.deadline_reached) {
      limit_reached(report, "the deadline of " + std::to_string(options.deadline.count()) +
                                " ms passed while the solution was verified");
      return report;
    }
    conclude(run.findings, run.ships, run.num_ships, run.store, run.total_resource_mass,
             run.arcs.thrust_phases, report);
    report.trajectories = std::move(run.arcs.trajectories);
    report.statistics.derivative_evaluations = run.arcs.evaluations;
    report.statistics.arcs = run.arcs.arcs;
    report.statistics.lines = count_lines(solution_text);
    report.statistics.ships_verified = run.assembled.size();
  } catch (const std::bad_alloc&) {
    report = Report();
    report.outcome = Outcome::out_of_memory;
    report.error = "out of memory while verifying the solution";
  }
  return report;
}

int default_workers() {
  const unsigned hardware = std::thread::hardware_concurrency();
  return hardware == 0 ? 1
                       : static_cast<int>(std::min(hardware, static_cast<unsigned>(kMaxWorkers)));
}

int workers_from_text(const char* text) {
  if (text != nullptr && *text != '\0') {
    char* end = nullptr;
    // A number too large for a long reads as the largest long: the cap.
    const long n = std::strtol(text, &end, 10);
    if (*end == '\0' && n > 0) return static_cast<int>(std::min<long>(n, kMaxWorkers));
  }
  return default_workers();
}

const char* version() {
  return KAVREN_VERSION;
}

}  // namespace kavren
