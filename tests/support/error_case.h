// Error cases of the whole program: each starts from the valid demo scenario, changes
// it in one targeted way and states the complete expected outcome (stdout bytes, exit
// status, score file). Cases are listed by family in separate files; every case runs as
// its own test, and the coverage test checks that together they reach every message.
#pragma once

#include <functional>
#include <optional>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

namespace kavren::test {

// The score-file message shares its code with the catalogue's.
constexpr const char* kScoreFileError = "ErrorA00. File Open Error: Cannot find this file";

// The files of one run, as the case leaves them.
struct Scenario {
  std::vector<std::string> lines;  // Result.txt, one entry per line, without '\n'
  std::string catalogue;           // KAVREN_Asteroids_Data.txt
  std::vector<std::string> args;   // command-line arguments of kavren-check
  bool write_result = true;        // false: no Result.txt in the folder
  bool write_catalogue = true;     // false: no catalogue in the folder
  std::string result_suffix;       // bytes appended after the joined lines
  // Runs in the folder after the files are written (e.g. to make a path a directory).
  std::function<void(const std::string& folder)> prepare;

  std::string result_text() const;  // lines joined with '\n', each ended by one
};

struct Expectation {
  std::string out;  // the whole stdout
  int status = 0;
  std::optional<std::string> score;  // nullopt: no ScoreData.txt may be left
};

// The outcome of a run that stops with `out` and leaves no score file.
inline Expectation fails(std::string out, int status = 0) {
  return Expectation{std::move(out), status, std::nullopt};
}

struct ErrorCase {
  std::string name;  // test name: letters, digits and underscores
  std::string code;  // the message reached, as the prefix that tells it from every
                     // other: "Error201", "ErrorA03:" (reader) or "ErrorA03." (thrust
                     // table), "ErrorA00:" (catalogue) or kScoreFileError
  std::function<Expectation(Scenario&)> make;  // edits the demo, returns the outcome
};

// Cases print as their names in test reports.
inline void PrintTo(const ErrorCase& c, std::ostream* os) {
  *os << c.name;
}

// The demo scenario as kavren-synth writes it, synthesised once per test process, and
// the whole outcome kavren-synth states for it from its own construction.
const Scenario& demo_scenario();
const Expectation& demo_outcome();
// The flyby scenario of the synthesiser's suite (case 4): two resonant mining ships
// followed by a ship that flies by Venus, the Earth and Mars before one rendezvous.
const Scenario& flyby_scenario();

// Tokens of a solution line (split on tabs and blanks).
std::vector<std::string> tokens_of(const std::string& line);
// Token k (0-based) of a line as a number.
double token(const std::string& line, int k);
// The line with token k (0-based) replaced; the other tokens joined by tabs.
std::string with_token(const std::string& line, int k, const std::string& value);
// A number as the solution files write it (round-trip precision).
std::string number(double x);
// Sets token k of line i (0-based) to `value`, or adds `delta` to it.
void set_token(Scenario& s, int i, int k, const std::string& value);
void shift(Scenario& s, int i, int k, double delta);
// Index of the first line (0-based) from `from` on whose event ID (token 2) is `id`
// and whose token count is `count`; throws when there is none.
int find_line(const std::vector<std::string>& lines, int id, int count = 10, int from = 0);
// The first line (0-based) of the nth pair (0-based) with event ID `id`; of the last
// such pair when nth is negative.
int pair_line(const Scenario& s, int id, int nth = 0);

// Moves asteroid `id` `km` along its track (its catalogue mean anomaly advanced by the
// time it needs at the speed of line n, 0-based) and both lines n and n+1 of the rendezvous with it
// by the same stretch of straight track.
void move_along_track(Scenario& s, int id, int n, double km);

// kavren-report's JSON in `folder` states the verdict of the kavren-check run `check`.
struct RunResult;
void expect_report_agrees(const std::string& folder, const RunResult& check);

// The case lists, one per family of messages.
std::vector<ErrorCase> input_error_cases();    // Error000, ErrorA00-A02, A03:, A09-A23,
                                               // Error001, Error002, Error005
std::vector<ErrorCase> event_error_cases();    // Error5xx-7xx: launch, flyby, rendezvous
std::vector<ErrorCase> physics_error_cases();  // arcs, mining, ship count, score file
// The three lists in that order, and one case of them by name (throws when absent).
std::vector<ErrorCase> all_error_cases();
ErrorCase case_named(const std::string& name);

}  // namespace kavren::test
