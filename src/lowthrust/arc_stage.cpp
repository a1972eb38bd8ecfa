#include "lowthrust/arc_stage.h"

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <deque>
#include <exception>
#include <limits>
#include <memory>
#include <mutex>
#include <system_error>
#include <thread>

#include "lowthrust/arc_data.h"
#include "lowthrust/arc_integration.h"

namespace kavren {
namespace {

// What one arc yields, kept until the arcs are put back in file order.
struct ArcOutcome {
  std::unique_ptr<Findings> findings;
  std::vector<TrajectoryPoint> trajectory;
  int phases = 0;
  std::uint64_t evaluations = 0;
  std::exception_ptr error;  // anything but a finding (out of memory, the deadline)
};

struct Job {
  const BurningArc* arc;
  std::size_t ship;  // index of the ship in the order added
  ArcOutcome outcome;
};

// `numbers` holds the numbers of an arc left in the text, reused from arc to arc.
void check_one(const BurningArc& arc, bool stop_at_first, const ArcStageOptions& options,
               std::vector<double>& numbers, ArcOutcome& outcome) {
  honour_deadline(options.deadline);
  const bool in_text = !arc.text.empty() && options.read_numbers != nullptr;
  if (in_text) options.read_numbers(arc, numbers);
  const ArcTable table = in_text ? ArcTable(arc, numbers) : ArcTable(arc);
  outcome.findings =
      std::make_unique<Findings>(stop_at_first, Rule::thrust_magnitude, Rule::arc_mass);
  Findings& f = *outcome.findings;
  const int ship = arc.ship_number;
  ArcPhases phases;
  const bool laid_out = walk_thrust_table(arc, table, phases, f, ship);
  outcome.phases = phases.count;
  if (!laid_out) return;
  ArcIntegration run;
  run.ship = ship;
  run.trajectory = options.trajectories ? &outcome.trajectory : nullptr;
  run.inspect_steps = options.inspect_steps;
  run.deadline = options.deadline;
  integrate_and_compare(arc, table, phases, f, run);
  outcome.evaluations = run.evaluations;
}

constexpr std::size_t kNone = std::numeric_limits<std::size_t>::max();
constexpr std::size_t kMaxQueued = 64;  // arcs waiting for a worker

}  // namespace

struct ArcPipeline::State {
  ArcStageOptions options;
  bool stop_at_first;
  int helpers_wanted;
  std::vector<int> ship_ids;  // of the ships added, in order (the adding thread only)
  std::vector<std::thread> helpers;

  std::mutex mutex;
  std::condition_variable wake;
  // Guarded by the mutex: the list itself, the next arc to hand out, the end. The arcs
  // stay where they are while the list grows, so a worker holds its job unguarded.
  std::deque<Job> jobs;
  std::size_t next = 0;
  bool closed = false;
  bool cancelled = false;

  // Arcs are handed out in file order; once an arc failed in a run that stops at the
  // first failure, arcs after it are skipped, arcs before it still run, since one of
  // them may fail first.
  std::atomic<std::size_t> first_failed{kNone};
  std::atomic<std::size_t> done{0};

  // The next arc to verify, or null: none now (without waiting) or none to come. Without
  // waiting, an arc is taken only when more than `queued` are waiting.
  Job* take(bool wait, std::size_t& index, std::size_t& total, std::size_t queued = 0) {
    std::unique_lock<std::mutex> lock(mutex);
    if (wait) wake.wait(lock, [this] { return cancelled || closed || next < jobs.size(); });
    if (cancelled || next + queued >= jobs.size()) return nullptr;
    index = next++;
    total = jobs.size();
    return &jobs[index];
  }

  void run(Job& job, std::size_t index, std::size_t total, std::vector<double>& numbers) {
    if (index <= first_failed.load()) {
      bool failed = false;
      try {
        check_one(*job.arc, stop_at_first, options, numbers, job.outcome);
        failed = job.outcome.findings->stopped();
      } catch (...) {
        job.outcome.error = std::current_exception();
        failed = true;
      }
      if (failed) {
        std::size_t seen = first_failed.load();
        while (index < seen && !first_failed.compare_exchange_weak(seen, index)) {
        }
      }
    }
    const std::size_t finished = done.fetch_add(1) + 1;
    if (options.progress) options.progress(finished, total);
  }

  void work() {
    std::vector<double> numbers;
    std::size_t index = 0, total = 0;
    while (Job* job = take(true, index, total)) run(*job, index, total, numbers);
  }

  void add(const BurningArc* first, std::size_t count, int ship_id) {
    const std::size_t ship = ship_ids.size();
    ship_ids.push_back(ship_id);
    if (count == 0) return;
    {
      std::lock_guard<std::mutex> lock(mutex);
      for (std::size_t k = 0; k < count; ++k) jobs.push_back(Job{first + k, ship, {}});
    }
    wake.notify_all();
    // Helpers start with the first arcs; without any, the adding thread does the work.
    while (static_cast<int>(helpers.size()) < helpers_wanted) {
      try {
        helpers.emplace_back([this] { work(); });
      } catch (const std::system_error&) {
        helpers_wanted = static_cast<int>(helpers.size());
      }
    }
    // The reading does not run far ahead of the helpers: the arcs waiting stay few. Past
    // that, and without helpers at once, the adding thread verifies arcs itself.
    const std::size_t queued = helpers_wanted == 0 ? 0 : kMaxQueued;
    std::size_t index = 0, total = 0;
    while (Job* job = take(false, index, total, queued)) run(*job, index, total, own_numbers);
  }
  std::vector<double> own_numbers;  // the adding thread's

  void stop() {
    {
      std::lock_guard<std::mutex> lock(mutex);
      cancelled = true;
    }
    wake.notify_all();
    join();
  }
  void join() {
    for (std::thread& thread : helpers) thread.join();
    helpers.clear();
  }
};

ArcPipeline::ArcPipeline(const ArcStageOptions& options, bool stop_at_first)
    : state_(std::make_unique<State>()) {
  state_->options = options;
  state_->stop_at_first = stop_at_first;
  state_->helpers_wanted = std::max(options.workers, 1) - 1;
}

ArcPipeline::~ArcPipeline() {
  state_->stop();
}

void ArcPipeline::add_ship(const ShipClass& ship) {
  state_->add(ship.burning_arcs.data(), ship.burning_arcs.size(), ship.ship_id);
}

void ArcPipeline::cancel() {
  state_->stop();
}

bool ArcPipeline::finish(Findings& findings, ArcStageResult& result) {
  State& s = *state_;
  {
    std::lock_guard<std::mutex> lock(s.mutex);
    s.closed = true;
  }
  s.wake.notify_all();
  s.work();
  s.join();

  // Back in file order, up to the first arc that stopped the run.
  const std::size_t n = s.jobs.size();
  result.arcs = n;
  result.thrust_phases.assign(s.ship_ids.size(), 0);
  if (s.options.trajectories) {
    result.trajectories.resize(s.ship_ids.size());
    for (std::size_t k = 0; k < s.ship_ids.size(); ++k) result.trajectories[k].ship = s.ship_ids[k];
  }
  const std::size_t last = std::min(s.first_failed.load(), n == 0 ? 0 : n - 1);
  for (std::size_t i = 0; i < n && i <= last; ++i) {
    Job& job = s.jobs[i];
    ArcOutcome& outcome = job.outcome;
    if (outcome.error) {
      try {
        std::rethrow_exception(outcome.error);
      } catch (const DeadlineReached&) {
        result.deadline_reached = true;
        return false;
      }
    }
    result.evaluations += outcome.evaluations;
    result.thrust_phases[job.ship] += outcome.phases;
    if (s.options.trajectories) {
      std::vector<TrajectoryPoint>& points = result.trajectories[job.ship].points;
      points.insert(points.end(), outcome.trajectory.begin(), outcome.trajectory.end());
    }
    if (outcome.findings) findings.merge(std::move(*outcome.findings));
    if (findings.stopped()) return false;
  }
  return true;
}

bool check_arcs(const std::vector<ShipClass>& ships, Findings& findings,
                const ArcStageOptions& options, ArcStageResult& result) {
  ArcPipeline pipeline(options, findings.stop_at_first());
  for (const ShipClass& ship : ships) pipeline.add_ship(ship);
  return pipeline.finish(findings, result);
}

}  // namespace kavren
