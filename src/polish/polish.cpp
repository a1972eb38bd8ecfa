// Polishing a solution: the failing arcs found by a verification of every finding, each
// corrected on a worker thread, the new thrust written into the text, and the text
// verified again; an arc is kept only when that verification finds nothing new.
#include "kavren/polish.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <exception>
#include <map>
#include <stdexcept>
#include <system_error>
#include <thread>
#include <utility>

#include "lowthrust/arc_integration.h"
#include "polish/corrector.h"
#include "polish/thrust_text.h"
#include "readers/ship_assembly.h"
#include "readers/solution_reader.h"
#include "records/findings.h"

namespace kavren {
namespace {

bool arc_end_code(const std::string& code) {
  return code == "Error201" || code == "Error202" || code == "Error203";
}

std::string left_reason(const std::string& code) {
  if (code == "Error101") return "a pass closer than 0.3 AU to the Sun, not an arc's end state";
  if (code == "Error401") return "a thrust line above the engine's limit, not an arc's end state";
  if (code == "Error301") return "the number of ships, not an arc's end state";
  if (code.compare(0, 6, "ErrorA") == 0 || code.compare(0, 7, "Error00") == 0) {
    return "a format or timing fault of the file, not an arc's end state";
  }
  if (code.size() == 8 && (code[5] == '5' || code[5] == '6' || code[5] == '7')) {
    return "an event against its body or its own lines, not an arc's end state";
  }
  if (code.size() == 8 && (code[5] == '8' || code[5] == '9')) {
    return "the mining bookkeeping, not an arc's end state";
  }
  return "not an arc's end state";
}

std::string finding_key(const std::string& code, int ship, const std::vector<long long>& lines) {
  std::string key = code + "|" + std::to_string(ship);
  for (long long line : lines) key += "|" + std::to_string(line);
  return key;
}

// The arcs whose end states failed, taken from the ships as they are read.
struct ArcCollector : ShipSink {
  const std::map<std::pair<int, long long>, std::vector<std::string>>& wanted;
  std::map<std::pair<int, long long>, BurningArc> found;

  explicit ArcCollector(const std::map<std::pair<int, long long>, std::vector<std::string>>& w)
      : wanted(w) {}
  void ship_read(ShipClass&& ship, Findings&&, bool ended) override {
    if (ended) return;
    for (BurningArc& arc : ship.burning_arcs) {
      const std::pair<int, long long> key{ship.ship_id, printed_line(arc.end_state.line_index)};
      if (wanted.count(key) != 0) found.emplace(key, std::move(arc));
    }
  }
};

// The numbers of an arc left in the text, into its lines and values.
void fill_numbers(BurningArc& arc) {
  std::vector<double> numbers;
  if (!arc.text.empty()) read_arc_numbers(arc, numbers);
  arc.lines.clear();
  arc.values.clear();
  for (std::size_t k = 0; k + 3 < numbers.size(); k += 4) {
    arc.values.push_back(numbers[k]);
    arc.lines.push_back({numbers[k + 1], numbers[k + 2], numbers[k + 3]});
  }
  arc.text = {};
}

struct Job {
  ArcPolish entry;
  BurningArc arc;
  bool found = false;
  Correction correction;
};

void run_jobs(std::vector<Job>& jobs, const CorrectorSettings& settings, int threads) {
  std::atomic<std::size_t> next{0};
  std::exception_ptr error;
  std::atomic<bool> failed{false};
  auto work = [&] {
    for (std::size_t k = next++; k < jobs.size(); k = next++) {
      if (!jobs[k].found) continue;
      try {
        jobs[k].correction = correct_arc(jobs[k].arc, settings);
      } catch (...) {
        if (!failed.exchange(true)) error = std::current_exception();
      }
    }
  };
  const std::size_t helpers =
      std::min<std::size_t>(static_cast<std::size_t>(std::max(threads, 1)), jobs.size());
  std::vector<std::thread> pool;
  for (std::size_t k = 1; k < helpers; ++k) {
    try {
      pool.emplace_back(work);
    } catch (const std::system_error&) {
      break;  // fewer threads: the work is the same
    }
  }
  work();
  for (std::thread& t : pool) t.join();
  if (error) std::rethrow_exception(error);
}

int default_threads() {
  const unsigned hardware = std::thread::hardware_concurrency();
  return hardware == 0 ? 1 : static_cast<int>(std::min(hardware, 256u));
}

}  // namespace

PolishResult polish(const Catalogue& catalogue, std::string_view solution,
                    const PolishOptions& options) {
  if (!(options.safety > 0.0 && options.safety <= 1.0)) {
    throw std::invalid_argument("the safety must lie in (0, 1]");
  }
  if (!(options.max_degrees > 0.0 && options.max_degrees <= 90.0)) {
    throw std::invalid_argument("the largest turn must lie in (0, 90] degrees");
  }
  if (!(options.max_scale >= 0.0 && options.max_scale <= 0.5)) {
    throw std::invalid_argument("the largest magnitude change must lie in [0, 0.5]");
  }
  if (options.threads < 0 || options.max_iterations < 1) {
    throw std::invalid_argument("threads must be 0 or more and iterations 1 or more");
  }
  const int threads = options.threads > 0 ? options.threads : default_threads();
  Options verify_options;
  verify_options.mode = Mode::all;
  verify_options.workers = threads;

  PolishResult result;
  Report original = verify(catalogue, solution, verify_options);
  std::map<std::pair<int, long long>, std::vector<std::string>> ends;
  for (const Finding& f : original.findings) {
    if (arc_end_code(f.code) && !f.lines.empty()) {
      ends[{f.ship, f.lines.front()}].push_back(f.code);
    } else {
      result.left.push_back({f.code, f.lines, f.ship, left_reason(f.code)});
    }
  }
  if (ends.empty() || original.outcome != Outcome::verified) {
    result.text = std::string(solution);
    result.report = std::move(original);
    return result;
  }

  ArcCollector collector(ends);
  {
    Findings reading(false);
    int num_ships = 0;
    scan_solution(solution, reading, num_ships, collector, nullptr, true);
  }
  std::vector<Job> jobs;
  for (const auto& [key, codes] : ends) {
    Job job;
    job.entry.ship = key.first;
    job.entry.end_line = key.second;
    job.entry.codes = codes;
    const auto at = collector.found.find(key);
    if (at != collector.found.end()) {
      job.found = true;
      job.arc = std::move(at->second);
      fill_numbers(job.arc);
      job.entry.first_line = job.arc.first_line < 0 ? 0 : job.arc.first_line + 1LL;
      job.entry.last_line = job.arc.last_line < 0 ? 0 : job.arc.last_line + 1LL;
    } else {
      job.entry.reason = "its arc was not found in the file";
    }
    jobs.push_back(std::move(job));
  }

  CorrectorSettings settings;
  settings.safety = options.safety;
  settings.max_radians = options.max_degrees * 0.017453292519943295;
  settings.max_scale = options.max_scale;
  settings.max_iterations = options.max_iterations;
  run_jobs(jobs, settings, threads);

  // The new numbers, arc by arc; an arc whose thrust tokens cannot be rewritten in place
  // is not polished.
  const std::vector<std::size_t> starts = line_starts(solution);
  std::vector<std::vector<ThrustEdit>> edits(jobs.size());
  std::vector<bool> kept(jobs.size(), false);
  for (std::size_t k = 0; k < jobs.size(); ++k) {
    Job& job = jobs[k];
    const Correction& c = job.correction;
    if (job.found) {
      std::copy(c.before, c.before + 3, job.entry.before);
      std::copy(c.before, c.before + 3, job.entry.after);
      job.entry.iterations = c.iterations;
      job.entry.integrations = c.integrations;
      job.entry.reason = c.reason;
    }
    if (!c.polished) continue;
    kept[k] = true;
    for (std::size_t i = 0; i < c.changed.size(); ++i) {
      ThrustEdit edit;
      edit.line = static_cast<std::size_t>(job.arc.first_line + c.changed[i]);
      std::copy(c.thrust[i].begin(), c.thrust[i].end(), edit.u);
      std::string_view tokens[3];
      if (!thrust_tokens(line_at(solution, starts, edit.line), tokens)) {
        kept[k] = false;
        job.entry.reason = "the thrust numbers of line " + std::to_string(edit.line + 1) +
                           " are not all written in it";
        break;
      }
      edits[k].push_back(edit);
    }
  }

  std::map<std::string, int> before;
  for (const Finding& f : original.findings) ++before[finding_key(f.code, f.ship, f.lines)];

  // Verify the polished text; arcs that changed anything else are put back as they were.
  Report polished;
  for (int round = 0;; ++round) {
    std::vector<ThrustEdit> all;
    for (std::size_t k = 0; k < jobs.size(); ++k) {
      if (kept[k]) all.insert(all.end(), edits[k].begin(), edits[k].end());
    }
    if (all.empty() || round == 4) {
      for (std::size_t k = 0; k < jobs.size(); ++k) {
        if (kept[k]) jobs[k].entry.reason = "its polished file kept failing its verification";
        kept[k] = false;
      }
      result.text = std::string(solution);
      polished = std::move(original);
      break;
    }
    result.text = apply_thrust_edits(solution, starts, all);
    polished = verify(catalogue, result.text, verify_options);
    std::map<std::string, int> seen = before;
    std::vector<bool> bad(jobs.size(), false);
    bool unplaced = polished.outcome != Outcome::verified;
    for (const Finding& f : polished.findings) {
      const std::string key = finding_key(f.code, f.ship, f.lines);
      const bool is_new = seen[key]-- <= 0;
      if (!is_new && !arc_end_code(f.code)) continue;
      bool placed = false;
      for (std::size_t k = 0; k < jobs.size(); ++k) {
        const ArcPolish& e = jobs[k].entry;
        if (!kept[k] || e.ship != f.ship) continue;
        for (long long line : f.lines) {
          if (line >= e.first_line && line <= e.end_line && e.first_line > 0) {
            bad[k] = placed = true;
            jobs[k].entry.reason = "its verification found " + f.code + " on line " +
                                   std::to_string(line) + " once polished";
          }
        }
      }
      if (is_new && !placed) unplaced = true;
    }
    if (unplaced) {
      for (std::size_t k = 0; k < jobs.size(); ++k) {
        if (kept[k]) {
          bad[k] = true;
          jobs[k].entry.reason = "polishing changed the verdict of a rule elsewhere";
        }
      }
    }
    if (std::find(bad.begin(), bad.end(), true) == bad.end()) break;
    for (std::size_t k = 0; k < jobs.size(); ++k) {
      if (bad[k]) kept[k] = false;
    }
  }

  for (std::size_t k = 0; k < jobs.size(); ++k) {
    ArcPolish& e = jobs[k].entry;
    const Correction& c = jobs[k].correction;
    if (!kept[k]) continue;
    e.polished = true;
    e.reason.clear();
    std::copy(c.after, c.after + 3, e.after);
    e.max_turn_degrees = c.max_turn_degrees;
    e.max_magnitude_change = c.max_magnitude_change;
    e.changed_lines = static_cast<int>(c.changed.size());
  }
  for (Job& job : jobs) result.arcs.push_back(std::move(job.entry));
  result.report = std::move(polished);
  return result;
}

}  // namespace kavren
