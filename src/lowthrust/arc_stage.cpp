#include "lowthrust/arc_stage.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <limits>
#include <memory>
#include <system_error>
#include <thread>

#include "lowthrust/arc_data.h"
#include "lowthrust/arc_integration.h"
#include "records/announce.h"

namespace kavren {
namespace {

struct ArcRef {
  const BurningArc* arc;
  std::size_t ship;  // index into ships
};

// What one arc yields, kept until the arcs are put back in file order.
struct ArcOutcome {
  std::unique_ptr<Findings> findings;
  std::vector<TrajectoryPoint> trajectory;
  int phases = 0;
  std::uint64_t evaluations = 0;
  std::exception_ptr error;  // anything but a finding (out of memory, the deadline)
};

void check_one(const ArcRef& ref, bool stop_at_first, const ArcStageOptions& options,
               ArcOutcome& outcome) {
  honour_deadline(options.deadline);
  outcome.findings =
      std::make_unique<Findings>(stop_at_first, Rule::thrust_magnitude, Rule::arc_mass);
  Findings& f = *outcome.findings;
  const int ship = ref.arc->ship_number;
  ArcPhases phases;
  const bool laid_out = walk_thrust_table(*ref.arc, phases, f, ship);
  outcome.phases = phases.count;
  if (!laid_out) return;
  ArcIntegration run;
  run.ship = ship;
  run.trajectory = options.trajectories ? &outcome.trajectory : nullptr;
  run.inspect_steps = options.inspect_steps;
  run.deadline = options.deadline;
  integrate_and_compare(*ref.arc, phases, f, run);
  outcome.evaluations = run.evaluations;
}

}  // namespace

bool check_arcs(const std::vector<ShipClass>& ships, Findings& findings,
                const ArcStageOptions& options, ArcStageResult& result) {
  std::vector<ArcRef> arcs;
  for (std::size_t s = 0; s < ships.size(); ++s) {
    for (const BurningArc& arc : ships[s].burning_arcs) arcs.push_back(ArcRef{&arc, s});
  }
  const std::size_t n = arcs.size();
  const bool stop_at_first = findings.stop_at_first();
  std::vector<ArcOutcome> outcomes(n);

  // Arcs are handed out in file order; once an arc failed in a run that stops at the
  // first failure, arcs after it are skipped, arcs before it still run, since one of
  // them may fail first.
  constexpr std::size_t kNone = std::numeric_limits<std::size_t>::max();
  std::atomic<std::size_t> next{0};
  std::atomic<std::size_t> done{0};
  std::atomic<std::size_t> first_failed{kNone};
  auto work = [&] {
    for (;;) {
      const std::size_t i = next.fetch_add(1);
      if (i >= n || i > first_failed.load()) break;
      bool failed = false;
      try {
        check_one(arcs[i], stop_at_first, options, outcomes[i]);
        failed = outcomes[i].findings->stopped();
      } catch (...) {
        outcomes[i].error = std::current_exception();
        failed = true;
      }
      if (failed) {
        std::size_t seen = first_failed.load();
        while (i < seen && !first_failed.compare_exchange_weak(seen, i)) {
        }
      }
      const std::size_t finished = done.fetch_add(1) + 1;
      if (options.progress) options.progress(finished, n);
    }
  };

  const int workers = static_cast<int>(
      std::min<std::size_t>(static_cast<std::size_t>(std::max(options.workers, 1)),
                            std::max<std::size_t>(n, 1)));
  std::vector<std::thread> threads;
  for (int k = 1; k < workers; ++k) {
    try {
      threads.emplace_back(work);
    } catch (const std::system_error&) {
      break;  // no more threads: the ones started (or this one alone) do the work
    }
  }
  work();
  for (std::thread& thread : threads) thread.join();

  // Back in file order, up to the first arc that stopped the run.
  result.arcs = n;
  result.thrust_phases.assign(ships.size(), 0);
  if (options.trajectories) {
    result.trajectories.resize(ships.size());
    for (std::size_t s = 0; s < ships.size(); ++s) result.trajectories[s].ship = ships[s].ship_id;
  }
  const std::size_t last = std::min(first_failed.load(), n == 0 ? 0 : n - 1);
  for (std::size_t i = 0; i < n && i <= last; ++i) {
    ArcOutcome& outcome = outcomes[i];
    if (outcome.error) {
      try {
        std::rethrow_exception(outcome.error);
      } catch (const DeadlineReached&) {
        result.deadline_reached = true;
        return false;
      }
    }
    result.evaluations += outcome.evaluations;
    result.thrust_phases[arcs[i].ship] += outcome.phases;
    if (options.trajectories) {
      std::vector<TrajectoryPoint>& points = result.trajectories[arcs[i].ship].points;
      points.insert(points.end(), outcome.trajectory.begin(), outcome.trajectory.end());
    }
    if (outcome.findings) findings.merge(std::move(*outcome.findings));
    if (findings.stopped()) return false;
  }
  return true;
}

}  // namespace kavren

bool CheckBuringArc(const std::vector<ShipClass>& ships) {
  kavren::Findings findings(true);
  kavren::ArcStageResult result;
  kavren::check_arcs(ships, findings, kavren::ArcStageOptions{}, result);
  return kavren::announce(findings, true);
}

bool CheckBuringArc(const ShipClass& ship) {
  return CheckBuringArc(std::vector<ShipClass>{ship});
}
