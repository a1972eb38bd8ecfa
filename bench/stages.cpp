// Times every stage of one verification run on the files of a folder (default: the
// working directory), in process, and reports peak resident memory.
// Usage: bench_stages [folder] [repetitions]
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <iostream>
#include <sstream>
#include <string>
#include <vector>

#include "lowthrust/arc_checks.h"
#include "lowthrust/arc_scheduler.h"
#include "lowthrust/dynamics.h"
#include "mining/ledger.h"
#include "mining/score.h"
#include "readers/catalogue.h"
#include "readers/solution_reader.h"
#include "records/termination.h"

namespace {

using Clock = std::chrono::steady_clock;

double seconds_since(Clock::time_point start) {
  return std::chrono::duration<double>(Clock::now() - start).count();
}

struct StageTimes {
  double catalogue = 0, solution = 0, events = 0, ledger = 0, arcs = 0, score = 0;
  double arcs_cpu = 0;           // CPU seconds of all arc workers
  std::uint64_t evaluations = 0;  // derivative evaluations of the arc stage
};

double cpu_seconds() {
  struct rusage usage {};
  getrusage(RUSAGE_SELF, &usage);
  return usage.ru_utime.tv_sec + usage.ru_utime.tv_usec * 1e-6 + usage.ru_stime.tv_sec +
         usage.ru_stime.tv_usec * 1e-6;
}

// One run, stage by stage; false when a stage rejected the solution.
bool run_once(StageTimes& times) {
  auto t0 = Clock::now();
  ReadAsteroidsData("KAVREN_Asteroids_Data.txt");
  times.catalogue = seconds_since(t0);

  std::vector<ShipClass> ships;
  int num_ships = 0;
  t0 = Clock::now();
  bool ok = ReadSolutionFile(ships, num_ships, "Result.txt");
  times.solution = seconds_since(t0);
  if (!ok) return false;

  t0 = Clock::now();
  for (int i = 0; i < num_ships && ok; ++i) ok = ships[i].check_all();
  times.events = seconds_since(t0);
  if (!ok) return false;

  std::vector<DmStructAsteroid> table(kavren::kNumAsteroids);
  std::vector<StoreDmStruct> store;
  t0 = Clock::now();
  ok = CheckVisitDm(ships, num_ships, table, store);
  times.ledger = seconds_since(t0);
  if (!ok) return false;

  t0 = Clock::now();
  const double cpu0 = cpu_seconds();
  ok = CheckBuringArc(ships);
  times.arcs = seconds_since(t0);
  times.arcs_cpu = cpu_seconds() - cpu0;
  times.evaluations = kavren::last_arc_stage_evaluations();
  if (!ok) return false;

  double total = 0.0;
  t0 = Clock::now();
  ok = Test_MotherShipNum(num_ships, store, total) && Output_Solution(store);
  times.score = seconds_since(t0);
  clear_info();
  return ok;
}

double median(std::vector<double> v) {
  std::sort(v.begin(), v.end());
  return v.empty() ? 0.0 : v[v.size() / 2];
}

}  // namespace

int main(int argc, char** argv) {
  if (argc > 1 && chdir(argv[1]) != 0) {
    std::perror(argv[1]);
    return 2;
  }
  const int repetitions = argc > 2 ? std::max(1, std::atoi(argv[2])) : 5;
  std::vector<StageTimes> runs;
  std::ostringstream silenced;
  auto* saved = std::cout.rdbuf(silenced.rdbuf());
  bool accepted = true;
  for (int r = 0; r < repetitions; ++r) {
    StageTimes times;
    try {
      accepted = run_once(times) && accepted;
    } catch (const kavren::Termination&) {
      accepted = false;
    }
    runs.push_back(times);
  }
  std::cout.rdbuf(saved);

  auto column = [&](double StageTimes::*field) {
    std::vector<double> v;
    for (const StageTimes& t : runs) v.push_back(t.*field);
    return median(v);
  };
  long file_bytes = 0;
  if (FILE* f = std::fopen("Result.txt", "rb")) {
    std::fseek(f, 0, SEEK_END);
    file_bytes = std::ftell(f);
    std::fclose(f);
  }
  const double solution_s = column(&StageTimes::solution);
  struct rusage usage {};
  getrusage(RUSAGE_SELF, &usage);
  std::printf("verdict            %s\n", accepted ? "accepted" : "rejected (see stage output)");
  std::printf("solution file      %.1f MB\n", file_bytes / 1e6);
  std::printf("median of %d runs (ms):\n", repetitions);
  std::printf("  catalogue        %9.2f\n", 1e3 * column(&StageTimes::catalogue));
  std::printf("  solution         %9.2f  (%.0f MB/s)\n", 1e3 * solution_s,
              solution_s > 0 ? file_bytes / 1e6 / solution_s : 0.0);
  std::printf("  event checks     %9.2f\n", 1e3 * column(&StageTimes::events));
  std::printf("  mining ledger    %9.2f\n", 1e3 * column(&StageTimes::ledger));
  std::printf("  burning arcs     %9.2f\n", 1e3 * column(&StageTimes::arcs));
  std::printf("  ship count+score %9.2f\n", 1e3 * column(&StageTimes::score));
  const std::uint64_t evaluations = runs.empty() ? 0 : runs.back().evaluations;
  const double arcs_cpu = column(&StageTimes::arcs_cpu);
  std::printf("arc workers        %d\n", kavren::arc_worker_count());
  std::printf("derivative evals   %llu\n", static_cast<unsigned long long>(evaluations));
  std::printf("CPU per evaluation %.1f ns (arc stage CPU time, integrator included)\n",
              evaluations ? 1e9 * arcs_cpu / static_cast<double>(evaluations) : 0.0);
  std::printf("peak resident      %.1f MB\n", usage.ru_maxrss / 1024.0);
  return accepted ? 0 : 1;
}
