// Times every stage of one verification of the files in a folder (default: the working
// directory), in process, then the whole verify call and kavren-check run as a child
// process in that folder; reports derivative evaluations and peak resident memory.
// Usage: bench_stages [folder] [repetitions] [mode: first|all|trajectories]
// Arc workers: KAVREN_THREADS, as kavren-check.
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "core/ship_checks.h"
#include "kavren/verify.h"
#include "lowthrust/arc_stage.h"
#include "mining/ledger.h"
#include "mining/score.h"
#include "readers/file_bytes.h"
#include "readers/ship_assembly.h"
#include "readers/solution_reader.h"

namespace {

using Clock = std::chrono::steady_clock;

double ms_since(Clock::time_point start) {
  return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

struct StageTimes {
  double catalogue = 0, solution = 0, events = 0, ledger = 0, arcs = 0, count = 0;
  double arc_numbers = 0;  // part of arcs: reading the numbers of the arcs' lines
  double verify = 0, process = 0;
  std::uint64_t evaluations = 0;
};

double median(std::vector<double> v) {
  std::sort(v.begin(), v.end());
  return v.empty() ? 0.0 : v[v.size() / 2];
}

// kavren-check in the working directory, output discarded; milliseconds of wall time.
double run_checker(const char* binary) {
  const auto start = Clock::now();
  const pid_t pid = fork();
  if (pid == 0) {
    std::freopen("/dev/null", "w", stdout);
    execl(binary, binary, static_cast<char*>(nullptr));
    _exit(127);
  }
  int status = 0;
  waitpid(pid, &status, 0);
  return ms_since(start);
}

}  // namespace

int main(int argc, char** argv) {
  // kavren-check beside this program's folder: build/<preset>/bench/../kavren-check.
  char self[4096] = {};
  const ssize_t length = readlink("/proc/self/exe", self, sizeof self - 1);
  std::string checker = length > 0 ? std::string(self, static_cast<std::size_t>(length)) : "";
  checker = checker.substr(0, checker.rfind('/') + 1) + "../kavren-check";
  if (argc > 1 && chdir(argv[1]) != 0) {
    std::perror(argv[1]);
    return 2;
  }
  const int repetitions = argc > 2 ? std::max(1, std::atoi(argv[2])) : 5;
  const std::string mode = argc > 3 ? argv[3] : "first";
  kavren::Options options;
  options.workers = kavren::workers_from_text(std::getenv("KAVREN_THREADS"));
  options.mode = mode == "first" ? kavren::Mode::first : kavren::Mode::all;
  options.trajectories = mode == "trajectories";

  std::string text;
  kavren::read_file_bytes("Result.txt", text);
  std::vector<StageTimes> runs;
  bool accepted = true;
  for (int r = 0; r < repetitions; ++r) {
    StageTimes t;
    auto t0 = Clock::now();
    // As kavren-check loads it: the file mapped, then read.
    kavren::MappedFile catalogue_file;
    catalogue_file.open("KAVREN_Asteroids_Data.txt");
    const kavren::Catalogue catalogue = kavren::Catalogue::from_text(catalogue_file.text());
    t.catalogue = ms_since(t0);

    // The stages one after the other, each as the run does it: the arcs' lines left in
    // the text and read where each arc is verified.
    kavren::Findings findings(options.mode == kavren::Mode::first);
    struct Collect : kavren::ShipSink {
      std::vector<ShipClass> ships;
      void ship_read(ShipClass&& ship, kavren::Findings&&, bool) override {
        ships.push_back(std::move(ship));
      }
    } read;
    int num_ships = 0;
    t0 = Clock::now();
    kavren::scan_solution(text, findings, num_ships, read, nullptr, true);
    t.solution = ms_since(t0);
    std::vector<ShipClass>& ships = read.ships;
    t0 = Clock::now();
    for (ShipClass& ship : ships) {
      kavren::EventContext context{findings, catalogue.table().rows(), ship.ship_id};
      kavren::check_ship(ship, context);
    }
    t.events = ms_since(t0);
    std::vector<DmStructAsteroid> table(kavren::kNumAsteroids);
    std::vector<StoreDmStruct> store;
    t0 = Clock::now();
    kavren::check_mining_ledger(ships, num_ships, table, store, findings);
    t.ledger = ms_since(t0);
    std::vector<double> numbers;
    double checksum = 0.0;
    t0 = Clock::now();
    for (const ShipClass& ship : ships) {
      for (const BurningArc& arc : ship.burning_arcs) {
        kavren::read_arc_numbers(arc, numbers);
        if (!numbers.empty()) checksum += numbers.back();
      }
    }
    t.arc_numbers = ms_since(t0);
    if (checksum == 0.5) std::printf(" ");  // keeps the reading from being left out
    kavren::ArcStageOptions arc_options;
    arc_options.workers = options.workers;
    arc_options.trajectories = options.trajectories;
    arc_options.inspect_steps = options.mode == kavren::Mode::all;
    arc_options.read_numbers = kavren::read_arc_numbers;
    kavren::ArcStageResult arcs;
    t0 = Clock::now();
    kavren::check_arcs(ships, findings, arc_options, arcs);
    t.arcs = ms_since(t0);
    t.evaluations = arcs.evaluations;
    double total = 0.0;
    t0 = Clock::now();
    kavren::check_ship_count(num_ships, store, total, findings);
    t.count = ms_since(t0);

    t0 = Clock::now();
    const kavren::Report report = kavren::verify(catalogue, text, options);
    t.verify = ms_since(t0);
    accepted = accepted && report.accepted;
    t.process = run_checker(checker.c_str());
    runs.push_back(t);
  }

  auto column = [&](double StageTimes::*field) {
    std::vector<double> v;
    for (const StageTimes& t : runs) v.push_back(t.*field);
    return median(v);
  };
  const double mb = static_cast<double>(text.size()) / 1e6;
  const double stages = column(&StageTimes::catalogue) + column(&StageTimes::solution) +
                        column(&StageTimes::events) + column(&StageTimes::ledger) +
                        column(&StageTimes::arcs) + column(&StageTimes::count);
  struct rusage usage {};
  getrusage(RUSAGE_SELF, &usage);
  std::printf("verdict            %s\n", accepted ? "accepted" : "rejected");
  std::printf("solution file      %.1f MB, mode %s, %d arc worker(s)\n", mb, mode.c_str(),
              options.workers);
  std::printf("median of %d runs (ms):\n", repetitions);
  std::printf("  catalogue        %9.2f\n", column(&StageTimes::catalogue));
  std::printf("  solution         %9.2f  (%.0f MB/s)\n", column(&StageTimes::solution),
              mb / (column(&StageTimes::solution) / 1e3));
  std::printf("  event checks     %9.2f\n", column(&StageTimes::events));
  std::printf("  mining ledger    %9.2f\n", column(&StageTimes::ledger));
  std::printf("  burning arcs     %9.2f\n", column(&StageTimes::arcs));
  std::printf("    of which the arc lines' numbers %.2f  (timed alone: tokenised and converted)\n",
              column(&StageTimes::arc_numbers));
  std::printf("  ship count       %9.2f\n", column(&StageTimes::count));
  std::printf("  stages together  %9.2f\n", stages);
  std::printf("  verify call      %9.2f  (catalogue excluded)\n", column(&StageTimes::verify));
  std::printf(
      "  kavren-check     %9.2f  (whole process, stages overlapping; %+.2f against "
      "the stages together)\n",
      column(&StageTimes::process), column(&StageTimes::process) - stages);
  std::printf("derivative evals   %llu\n",
              static_cast<unsigned long long>(runs.empty() ? 0 : runs.back().evaluations));
  std::printf("peak resident      %.1f MB (this program)\n", usage.ru_maxrss / 1024.0);
  return accepted ? 0 : 1;
}
