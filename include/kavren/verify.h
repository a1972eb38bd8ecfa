// Verification of solutions in memory: the catalogue is loaded once and shared, each
// call checks one solution text and returns a Report. Nothing is read or written,
// nothing is printed, and calls from several threads at once are independent.
//
//   #include <kavren/verify.h>
//   const kavren::Catalogue catalogue =
//       kavren::Catalogue::from_file("KAVREN_Asteroids_Data.txt");
//   kavren::Options options;
//   options.mode = kavren::Mode::all;
//   const kavren::Report report = kavren::verify(catalogue, solution_text, options);
//   for (const kavren::Finding& f : report.findings) std::cout << f.message;
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>

#include "kavren/report.h"

namespace kavren {

class AsteroidTable;  // the 60,000 catalogue rows, owned by the ephemeris

// A file that cannot be opened or read; what() names the file and the reason.
class InputError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// The asteroid catalogue: immutable once loaded, cheap to copy (copies share the rows),
// safe to use from several threads at once.
class Catalogue {
 public:
  // Reads the catalogue file; throws InputError when it cannot be opened or read.
  static Catalogue from_file(const std::string& path);
  // The catalogue's text: a header line, then the records. Never fails: a short or
  // malformed text leaves the rows it does not reach at zero, as the file would.
  static Catalogue from_text(std::string_view text);

  const AsteroidTable& table() const { return *table_; }

 private:
  explicit Catalogue(std::shared_ptr<const AsteroidTable> table);
  std::shared_ptr<const AsteroidTable> table_;
};

enum class Mode {
  first,  // exactly kavren-check's run: it stops at the first violation
  all,    // every rule of every event, arc and ship; a structural fault of the file
          // still ends the report, as nothing after it can be read reliably
};

struct Options {
  Mode mode = Mode::first;
  int workers = 0;            // threads integrating arcs; 0: one per hardware thread
  bool trajectories = false;  // keep the states sampled along every arc
  // Limits for untrusted input (0: none). Reaching one ends the verification with
  // Outcome::limit_reached.
  std::size_t max_bytes = 0;
  std::chrono::milliseconds deadline{0};
  // Called as arcs are done (done, total), from any worker thread; may be empty.
  std::function<void(std::size_t done, std::size_t total)> progress;
};

// Verifies one solution, the text of a Result.txt file.
Report verify(const Catalogue& catalogue, std::string_view solution_text,
              const Options& options = {});

// The number of threads a setting such as the environment's KAVREN_THREADS asks for: a
// positive whole number in decimal, at most kMaxWorkers. Anything else (null, empty, zero,
// negative, other characters) leaves the choice to the machine: default_workers().
constexpr int kMaxWorkers = 256;
int workers_from_text(const char* text);
// One worker per hardware thread, at most kMaxWorkers; one when the machine does not say.
int default_workers();

// The library's version, "major.minor.patch": the project's version.
const char* version();

}  // namespace kavren
