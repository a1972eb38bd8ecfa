// How the work grows with the number of lines, on three shapes built from the demo (a
// folder made by `kavren-synth demo <folder>`): zero-time thrust phases before the first
// arc, arc lines after the last event, and ships of one launch pair each. Each shape is
// verified at 10,000, 100,000 and 1,000,000 added lines (kavren-check's run, in process);
// linear work keeps the time per line flat.
//
//   bench_growth <demo folder> [repetitions]
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

std::vector<std::string> lines_of(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  std::vector<std::string> lines;
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  return lines;
}

// The line with its first token replaced by `id`.
std::string with_ship(const std::string& line, const std::string& id) {
  return id + line.substr(line.find_first_of(" \t"));
}

std::string shape(const std::vector<std::string>& demo, int kind, int count) {
  std::string text;
  if (kind == 0) {  // zero-time phases of three lines at the launch epoch, before the arc's own
    text = demo[0] + "\n" + demo[1] + "\n";
    for (int k = 0; k < count - count % 3; ++k) text += "1\t-1\t64411\t0\t0\t0\n";
    for (std::size_t i = 2; i < demo.size(); ++i) text += demo[i] + "\n";
  } else if (kind == 1) {  // arc lines after the last event
    for (const std::string& line : demo) text += line + "\n";
    const std::string ship = demo.back().substr(0, demo.back().find_first_of(" \t"));
    for (int k = 0; k < count; ++k) text += ship + "\t-1\t69807\t1e400\tnan\t-0\n";
  } else {  // launch pairs of alternating ship IDs: every pair is a ship
    for (int k = 0; k < count / 2; ++k) {
      const std::string id = k % 2 == 0 ? "1" : "2";
      text += with_ship(demo[0], id) + "\n" + with_ship(demo[1], id) + "\n";
    }
  }
  return text;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 2) {
    std::fprintf(stderr, "usage: bench_growth <folder of kavren-synth demo> [repetitions]\n");
    return 2;
  }
  const std::string folder = argv[1];
  const int repetitions = argc > 2 ? std::max(1, std::atoi(argv[2])) : 3;
  const kavren::Catalogue catalogue =
      kavren::Catalogue::from_file(folder + "/KAVREN_Asteroids_Data.txt");
  const std::vector<std::string> demo = lines_of(folder + "/Result.txt");
  const char* const names[] = {"zero-time phases", "lines after the last event", "one-pair ships"};
  kavren::Options options;
  options.workers = 1;
  for (int kind = 0; kind < 3; ++kind) {
    for (int count : {10000, 100000, 1000000}) {
      const std::string text = shape(demo, kind, count);
      double best = 1e300;
      std::string verdict;
      for (int r = 0; r < repetitions; ++r) {
        const auto start = std::chrono::steady_clock::now();
        const kavren::Report report = kavren::verify(catalogue, text, options);
        best = std::min(
            best, std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
        verdict = report.checker_output.substr(0, report.checker_output.find_first_of(".!"));
      }
      std::printf("%-27s %8d lines: best of %d %8.1f ms, %6.1f ns per line  (%s)\n", names[kind],
                  count, repetitions, 1e3 * best, 1e9 * best / count, verdict.c_str());
    }
  }
  return 0;
}
