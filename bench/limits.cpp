// How closely a deadline is honoured on a hostile file: Result-late-arrivals.txt of a
// folder made by `kavren-synth bench <folder> --ships 100` (every event that ends a
// burning arc with lines at MJD 99999, so that, reporting every finding, each such arc's
// last coast runs to its evaluation budget). Prints, per deadline, the time the
// verification took without and with it and the overshoot past the deadline.
//
//   bench_limits <folder> [repetitions]
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "kavren/verify.h"

namespace {

std::string read(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream bytes;
  bytes << in.rdbuf();
  return bytes.str();
}

double seconds_of(const kavren::Catalogue& catalogue, const std::string& text,
                  const kavren::Options& options, kavren::Outcome& outcome) {
  const auto start = std::chrono::steady_clock::now();
  outcome = kavren::verify(catalogue, text, options).outcome;
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 2) {
    std::fprintf(stderr, "usage: bench_limits <folder of kavren-synth bench> [repetitions]\n");
    return 2;
  }
  const std::string folder = argv[1];
  const int repetitions = argc > 2 ? std::max(1, std::atoi(argv[2])) : 5;
  const kavren::Catalogue catalogue =
      kavren::Catalogue::from_file(folder + "/KAVREN_Asteroids_Data.txt");
  const std::string text = read(folder + "/Result-late-arrivals.txt");

  for (int workers : {1, 2}) {
    kavren::Options options;
    options.workers = workers;
    options.mode = kavren::Mode::all;
    kavren::Outcome outcome;
    const double unlimited = seconds_of(catalogue, text, options, outcome);
    std::printf("workers %d: without a deadline %.3f s\n", workers, unlimited);
    for (int ms : {50, 200, 1000}) {
      options.deadline = std::chrono::milliseconds(ms);
      double worst = 0.0, sum = 0.0;
      int reached = 0;
      for (int r = 0; r < repetitions; ++r) {
        const double s = seconds_of(catalogue, text, options, outcome);
        reached += outcome == kavren::Outcome::limit_reached;
        worst = std::max(worst, s);
        sum += s;
      }
      std::printf(
          "  deadline %4d ms: limit reached %d/%d, mean %.1f ms, worst %.1f ms, "
          "worst overshoot %+.1f%%\n",
          ms, reached, repetitions, 1e3 * sum / repetitions, 1e3 * worst,
          100.0 * (worst * 1e3 - ms) / ms);
    }
  }
  return 0;
}
