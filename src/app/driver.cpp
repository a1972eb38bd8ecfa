#include "app/driver.h"

#include <signal.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <new>
#include <optional>
#include <string>
#include <thread>

#include "kavren/verify.h"
#include "readers/file_bytes.h"
#include "records/findings.h"

namespace kavren {
namespace {

constexpr const char* kCatalogueFile = "KAVREN_Asteroids_Data.txt";
constexpr const char* kSolutionFile = "Result.txt";
constexpr const char* kScoreFile = "./ScoreData.txt";
// The run could not be finished (memory could not be had): no verdict was reached.
constexpr int kResourceFailure = 4;

int exit_status(Rule rule) {
  return rule_info(rule).exit_status;
}

int print(const std::string& text, int status) {
  std::cout << text;
  std::cout.flush();
  return status;
}

enum class ScoreWrite { written, not_opened, failed };

// A score file that cannot be opened has its own message. One that opens but cannot be
// written whole (a full disk, a file-size limit) is removed, so that no truncated score
// file is left, and the reason goes to standard error: the verdict does not change.
ScoreWrite write_score_file(const std::string& bytes, int& error) {
  std::FILE* file = std::fopen(kScoreFile, "wb");
  if (file == nullptr) return ScoreWrite::not_opened;
  errno = 0;
  const bool complete = std::fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size();
  error = errno;
  const bool closed = std::fclose(file) == 0;
  if (error == 0) error = errno;
  if (complete && closed) return ScoreWrite::written;
  std::remove(kScoreFile);
  return ScoreWrite::failed;
}

// What the run is doing, for the message when memory runs out.
struct Stage {
  const char* what = "reading";
  const char* file = kCatalogueFile;
  std::size_t bytes = 0;
};

// The input files are mapped into memory; one that another program shortens while it is
// read cannot be read to its end: the run ends as when memory runs out, with one line
// on standard error (only async-signal-safe calls here).
const char* g_reading = kCatalogueFile;

extern "C" void input_vanished(int) {
  static constexpr char kHead[] = "kavren-check: ";
  static constexpr char kTail[] = " was shortened while it was read\n";
  const auto say = [](const char* text, std::size_t size) {
    if (::write(STDERR_FILENO, text, size) < 0) return;
  };
  say(kHead, sizeof kHead - 1);
  say(g_reading, std::strlen(g_reading));
  say(kTail, sizeof kTail - 1);
  std::_Exit(kResourceFailure);
}

// What a run reads and finds stays until the process ends, which returns the memory
// faster than freeing it piece by piece; it stays reachable, so it is no leak. A second
// run in the same process frees the first's.
struct Held {
  std::optional<Catalogue> catalogue;
  MappedFile solution;
  Report report;
};
Held* g_held = nullptr;

int verify_files(Stage& stage) {
  delete g_held;
  g_held = nullptr;
  g_held = new Held;
  Held& held = *g_held;

  struct sigaction on_bus {};
  on_bus.sa_handler = input_vanished;
  sigaction(SIGBUS, &on_bus, nullptr);

  std::optional<Catalogue>& catalogue = held.catalogue;
  {
    MappedFile catalogue_file;
    if (!catalogue_file.open(kCatalogueFile)) {
      return print("ErrorA00: The file of Asteroid Data cannot be found.\n",
                   exit_status(Rule::catalogue_file));
    }
    catalogue = Catalogue::from_text(catalogue_file.text());
  }

  MappedFile& solution = held.solution;
  stage.file = kSolutionFile;
  g_reading = kSolutionFile;
  if (!solution.open(kSolutionFile)) {
    return print("ErrorA01. File Open Error: Cannot find the solution file.\n",
                 exit_status(Rule::solution_file));
  }
  stage.what = "verifying";
  stage.bytes = solution.text().size();
  Options options;
  options.workers = workers_from_text(std::getenv("KAVREN_THREADS"));
  held.report = verify(*catalogue, solution.text(), options);
  const Report& report = held.report;
  if (report.outcome == Outcome::out_of_memory) throw std::bad_alloc();
  if (report.score_file) {
    int error = 0;
    switch (write_score_file(*report.score_file, error)) {
      case ScoreWrite::not_opened:
        return print("ErrorA00. File Open Error: Cannot find this file 'ScoreData.txt'.\n",
                     exit_status(Rule::score_file));
      case ScoreWrite::failed:
        std::cerr << "kavren-check: cannot write ScoreData.txt: "
                  << (error != 0 ? std::strerror(error) : "write error") << '\n';
        break;
      case ScoreWrite::written:
        break;
    }
  }
  return print(report.checker_output, report.exit_status);
}

}  // namespace

int run_checker(int argc) {
  // Only the argument count matters: any argument is refused before anything is read.
  // A count of 0 (no program name) runs like no argument.
  if (argc >= 2) {
    return print(
        "Error000. The number of input parameters is incorrect.\n"
        "The input is consisted with two files: the front one contains the "
        "KAVREN_Asteroids_Data.txt data, and the behind one takes the Result.txt.\n",
        exit_status(Rule::arguments));
  }
  Stage stage;
  try {
    return verify_files(stage);
  } catch (const std::bad_alloc&) {
    std::cerr << "kavren-check: out of memory while " << stage.what << ' ' << stage.file;
    if (stage.bytes > 0) std::cerr << " (" << (stage.bytes + 500000) / 1000000 << " MB)";
    std::cerr << '\n';
    return kResourceFailure;
  }
}

}  // namespace kavren
