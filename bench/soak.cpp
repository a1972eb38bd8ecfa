// Resident memory and open file descriptors over many verifications in one process, as an
// optimiser runs them, on the demo (a folder made by `kavren-synth demo <folder>`): the
// demo, the demo with a thrust over the limit, the demo cut off inside a line and text that
// is no solution, in both modes, with 1-3 workers. Prints the growth of the resident set
// after the first 100 verifications and the descriptors before and after.
//
//   bench_soak <demo folder> [verifications, default 10000]
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "kavren/verify.h"

namespace {

long resident_bytes() {
  std::ifstream statm("/proc/self/statm");
  long size = 0, resident = 0;
  statm >> size >> resident;
  return resident * sysconf(_SC_PAGESIZE);
}

long open_descriptors() {
  long n = 0;
  for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
    static_cast<void>(entry);
    ++n;
  }
  return n;
}

std::string read(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream bytes;
  bytes << in.rdbuf();
  return bytes.str();
}

// The text with the fourth token of its fifth line (the first thrust's x) set to 0.7 N.
std::string with_excess_thrust(const std::string& text) {
  std::size_t at = 0;
  for (int line = 0; line < 4; ++line) at = text.find('\n', at) + 1;
  for (int token = 0; token < 3; ++token) at = text.find_first_of(" \t", at) + 1;
  return text.substr(0, at) + "0.7" + text.substr(text.find_first_of(" \t", at));
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 2) {
    std::fprintf(stderr, "usage: bench_soak <folder of kavren-synth demo> [verifications]\n");
    return 2;
  }
  const std::string folder = argv[1];
  const long verifications = argc > 2 ? std::max(101L, std::atol(argv[2])) : 10000;
  const kavren::Catalogue catalogue =
      kavren::Catalogue::from_file(folder + "/KAVREN_Asteroids_Data.txt");
  const std::string demo = read(folder + "/Result.txt");
  const std::vector<std::string> texts = {demo, with_excess_thrust(demo),
                                          demo.substr(0, demo.size() / 3), "x\n"};
  const long descriptors = open_descriptors();
  long warm = 0, accepted = 0;
  for (long k = 0; k < verifications; ++k) {
    kavren::Options options;
    options.mode = k % 2 ? kavren::Mode::all : kavren::Mode::first;
    options.workers = 1 + static_cast<int>(k % 3);
    options.trajectories = k % 5 == 0;
    accepted += kavren::verify(catalogue, texts[k % texts.size()], options).accepted;
    if (k + 1 == 100) warm = resident_bytes();
  }
  std::printf(
      "%ld verifications (%ld accepted): resident memory %+.2f MB after the first 100, "
      "%ld file descriptors before and %ld after\n",
      verifications, accepted, (resident_bytes() - warm) / 1e6, descriptors, open_descriptors());
  return 0;
}
