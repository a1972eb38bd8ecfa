// Hostile and damaged input through the real binary: missing and unreadable files, empty
// and blank files, line ends, stray bytes, huge lines and files, unusual numbers, IDs
// beyond 32 bits, non-finite integration and short catalogues. Each test asserts the
// whole standard output and the exit status.
//
// Many changes leave every value the checks see as it was (a number written in another
// form, bytes the tokenizer drops); those runs must give exactly the outcome of the
// unchanged demo.
#include <grp.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "support/e2e.h"
#include "support/error_case.h"

namespace kavren::test {
namespace {

constexpr const char* kUnreasonable = ": The number of data in this line is unreasonable.";
// A file of launch pairs only: no rendezvous, no arc, no resources; with one ship the
// ship-count limit 2 * exp(0) = 2 is kept.
constexpr const char* kOneLaunchOnlyShip =
    "Check successfully!\n"
    "The number of mining ships is 1 ;\n"
    "The number of mined asteroids is 0 ;\n"
    "The total resource mass is 0 kg.\n";

std::string joined(const std::vector<std::string>& lines) {
  std::string text;
  for (const std::string& line : lines) text += line + "\n";
  return text;
}

RunResult run_text(const std::string& result, const std::string& catalogue) {
  return run_check({{"Result.txt", result}, {"KAVREN_Asteroids_Data.txt", catalogue}});
}

RunResult run_lines(const std::vector<std::string>& lines) {
  return run_text(joined(lines), demo_scenario().catalogue);
}

// The unchanged demo, run once: a success with every ship, asteroid and arc checked.
const RunResult& demo_run() {
  static const RunResult run = run_lines(demo_scenario().lines);
  return run;
}

void expect_demo_outcome(const RunResult& run) {
  ASSERT_EQ(demo_run().out.rfind("Check successfully!\n", 0), 0u) << demo_run().out;
  EXPECT_EQ(run.out, demo_run().out);
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.score, demo_run().score);
}

void expect_outcome(const RunResult& run, const std::string& out, int status) {
  EXPECT_EQ(run.out, out);
  EXPECT_EQ(run.status, status);
}

std::string line_message(const char* head, int line, const char* tail) {
  return head + std::to_string(line) + tail + "\n";
}

// The demo's first two lines: one ship's launch, which the launch checks accept.
std::vector<std::string> launch_pair() {
  const std::vector<std::string>& lines = demo_scenario().lines;
  return {lines.at(0), lines.at(1)};
}

// Every token of the line rewritten by `f(k, token)`; tokens joined by tabs.
template <typename F>
std::string map_tokens(const std::string& line, F f) {
  const std::vector<std::string> tokens = tokens_of(line);
  std::string out;
  for (std::size_t k = 0; k < tokens.size(); ++k) {
    out += (k ? "\t" : "") + f(static_cast<int>(k), tokens[k]);
  }
  return out;
}

std::string hex_float(const std::string& decimal) {
  char text[64];
  std::snprintf(text, sizeof text, "%a", std::stod(decimal));
  return text;
}

template <std::size_t N>
std::string with_nul(const char (&text)[N]) {
  return std::string(text, N - 1);
}

// Line numbers (1-based) of the demo's first arc, as the demo lays it out: two thrust
// phases, lines 3..8 and 9..14, each opened and closed by zero-thrust lines.
constexpr int kFirstArcLine = 3;
constexpr int kSecondPhaseClose = 14;

// --- Files that are missing, unreadable, empty or blank ---------------------------

// A missing solution or catalogue, an empty file and a folder in the solution's place
// are rows of the error-case tables.
TEST(Robustness, UnreadableFiles) {
  // A folder in the catalogue's place opens but delivers no byte: every row stays zero,
  // which a launch-only file never consults.
  {
    TempDir dir;
    dir.write("Result.txt", joined(launch_pair()));
    ASSERT_EQ(mkdir((dir.path() + "/KAVREN_Asteroids_Data.txt").c_str(), 0700), 0);
    expect_outcome(run_in(dir.path(), checker_binary()), kOneLaunchOnlyShip, 0);
  }

  // Without read permission the file cannot be opened. The superuser reads every file,
  // so under it the checker runs as the unprivileged user 65534.
  TempDir dir;
  ASSERT_EQ(chmod(dir.path().c_str(), 0755), 0);
  dir.write("KAVREN_Asteroids_Data.txt", demo_scenario().catalogue);
  dir.write("Result.txt", joined(launch_pair()));
  const std::string binary = checker_binary();
  const auto run = [&] {
    return run_child(dir.path(), [&] {
      const gid_t nobody = 65534;
      if (geteuid() == 0 &&
          (setgroups(1, &nobody) != 0 || setgid(nobody) != 0 || setuid(nobody) != 0)) {
        return;  // status 127
      }
      execl(binary.c_str(), binary.c_str(), static_cast<char*>(nullptr));
      _exit(77);
    });
  };
  ASSERT_EQ(chmod((dir.path() + "/Result.txt").c_str(), 0), 0);
  const RunResult no_solution = run();
  if (no_solution.status == 77) GTEST_SKIP() << binary << " cannot be run by user 65534";
  expect_outcome(no_solution, "ErrorA01. File Open Error: Cannot find the solution file.\n", 1);
  ASSERT_EQ(chmod((dir.path() + "/Result.txt").c_str(), 0644), 0);
  ASSERT_EQ(chmod((dir.path() + "/KAVREN_Asteroids_Data.txt").c_str(), 0), 0);
  expect_outcome(run(), "ErrorA00: The file of Asteroid Data cannot be found.\n", 1);
}

// --- Edits of single lines ---------------------------------------------------------

using Lines = std::vector<std::string>;

struct LineEdit {
  std::string name;
  std::function<void(Lines&)> edit;
  std::string out;  // empty: the unchanged demo's outcome
};

// Stray bytes, huge lines, numbers in unusual forms, NaN in the integration and IDs
// beyond 32 bits, each an edit of the demo; every run ends with status 0.
std::vector<LineEdit> line_edits() {
  const std::string unreasonable_3 =
      line_message("ErrorA09. File Format Error on the line ", kFirstArcLine, kUnreasonable);
  const std::string ship_error =
      "ErrorA12. File Format Error on the line1: The ID of the ship is wrong.\n";
  const std::size_t megabyte = 1 << 20;
  const int arc = kFirstArcLine - 1;
  // The demo's first rendezvous (lines 15 and 16).
  const int visit = kSecondPhaseClose;
  const std::string asteroid = tokens_of(demo_scenario().lines.at(visit))[1];
  std::vector<LineEdit> edits = {
      // Bytes after a NUL are not part of the line: after the last token nothing changes;
      // after the third token the line has three tokens left.
      {"NulAfterTheLastToken", [=](Lines& l) { l[arc] += with_nul("\0 7 7 7 7"); }, ""},
      {"NulAfterTheThirdToken",
       [=](Lines& l) { l[arc] = "1\t-1\t64411.25" + with_nul("\0\t0\t0\t0"); }, unreasonable_3},
      // Trailing bytes of a number are not part of it: the mass still reads 2000. Bytes
      // above 127 are not white space: here they form a seventh token. A byte-order mark
      // glues onto the first ship ID, which then reads as 0.
      {"NonAsciiAfterANumber", [](Lines& l) { l[0] += "\xc3\xa9\xff"; }, ""},
      {"NonAsciiToken", [=](Lines& l) { l[arc] += " \xa0\x85"; }, unreasonable_3},
      {"ByteOrderMark", [](Lines& l) { l[0] = "\xef\xbb\xbf" + l[0]; }, ship_error},
      // Lines of a megabyte; trailing zeros leave an epoch's value as it is.
      {"MegabyteOfBlanks", [=](Lines& l) { l[arc] += std::string(megabyte, ' '); }, ""},
      {"MegabyteOfZeros",
       [=](Lines& l) { l[arc] = with_token(l[arc], 2, "64411.25" + std::string(megabyte, '0')); },
       ""},
      {"MegabyteOfLetters", [=](Lines& l) { l[arc] = std::string(megabyte, 'x'); }, unreasonable_3},
      // Every epoch, state, mass and thrust as a hexadecimal float of the same value,
      // every zero as "-0": the same doubles, so the same outcome.
      {"HexadecimalAndSignedZeros",
       [](Lines& l) {
         for (std::string& line : l) {
           line = map_tokens(line, [](int k, const std::string& token) {
             if (k < 2) return token;  // ship and event IDs are integers
             return std::stod(token) == 0.0 ? std::string("-0") : hex_float(token);
           });
         }
       },
       ""},
      // 0x1p16 = 65536 puts the first arc line after its successor: no phase opens there.
      {"HexadecimalEpochInsideTheMission",
       [=](Lines& l) { l[arc] = with_token(l[arc], 2, "0x1p16"); },
       "ErrorA03. File Format Error on the line 3: Missing the first line of the burning arc.\n"},
      // NaN passes every limit test: once the integration meets NaN the state reached is
      // NaN and the arc is accepted whatever its end state says. A last step of no time
      // (two thrust lines at one epoch, then the closing line) divides by zero.
      {"NaNThrust", [](Lines& l) { l[4] = with_token(l[4], 3, "nan"); }, ""},
      {"NaNEpoch", [](Lines& l) { l[4] = with_token(l[4], 2, "nan"); }, ""},
      {"LastStepOfNoTime",
       [](Lines& l) {
         l[6] = with_token(with_token(l[6], 2, "64413.25"), 3, "0.1");
         l[7] = with_token(l[7], 2, "64413.25");
       },
       ""},
      // IDs are reduced modulo 2^32 as atoi does: 2^32 + 1 is ship 1, and an asteroid ID
      // plus or minus 2^32 is the same asteroid.
      {"ShipIdPlusTwoToThe32",
       [](Lines& l) {
         for (std::string& line : l) {
           if (tokens_of(line)[0] == "1") line = with_token(line, 0, "4294967297");
         }
       },
       ""},
      // 2^32 reads as 0, a launch: one launch line too many.
      {"AsteroidIdTwoToThe32", [=](Lines& l) { l[visit] = with_token(l[visit], 1, "4294967296"); },
       "ErrorA13. File Format Error: The number of mining ships does not match the number of "
       "launch events.\n"},
  };
  for (long long shift : {4294967296LL, -4294967296LL}) {
    const std::string id = std::to_string(std::stoll(asteroid) + shift);
    edits.push_back({"AsteroidIdShifted" + id,
                     [=](Lines& l) {
                       for (int k : {visit, visit + 1}) l[k] = with_token(l[k], 1, id);
                     },
                     ""});
  }
  // 2^32 is 0, 2^31 is negative, a number beyond the range of long saturates to -1.
  for (const char* id : {"4294967296", "2147483648", "99999999999999999999999"}) {
    edits.push_back({std::string("ShipId") + id, [=](Lines& l) { l[0] = with_token(l[0], 0, id); },
                     ship_error});
  }
  // Numbers are read as the C library reads them (tests/readers/numbers_test.cpp): one row
  // per value the checks meet, not per spelling of it.
  edits.push_back({"ThrustMinusInfinity", [](Lines& l) { l[3] = with_token(l[3], 4, "-INF"); },
                   "Error401. Thrust Magnitude Error on the line 4: The thrust magnitude is inf N, "
                   "greater than the maximum 0.6N.\n"});  // line 4, the first thrust line
  const std::string later =
      "Error002. Event Time Error on the line3: The epoch is later than "
      "the mission's end time (69807 MJD).\n";
  const std::string earlier =
      "Error001. Event Time Error on the line3: The epoch is earlier "
      "than the mission's initial time (64328 MJD).\n";
  for (const char* epoch : {"1e400", "0x1p17"}) {
    edits.push_back({std::string("Epoch") + epoch,
                     [=](Lines& l) { l[arc] = with_token(l[arc], 2, epoch); }, later});
  }
  for (const char* epoch : {"-inf", "-0", "0x1p-1074"}) {
    edits.push_back({std::string("Epoch") + epoch,
                     [=](Lines& l) { l[arc] = with_token(l[arc], 2, epoch); }, earlier});
  }
  return edits;
}

TEST(Robustness, EditsOfTheDemo) {
  ASSERT_EQ(tokens_of(demo_scenario().lines[0])[0], "1");
  ASSERT_EQ(find_line(demo_scenario().lines,
                      std::stoi(tokens_of(demo_scenario().lines[kSecondPhaseClose])[1])),
            kSecondPhaseClose);
  for (const LineEdit& e : line_edits()) {
    SCOPED_TRACE(e.name);
    Lines lines = demo_scenario().lines;
    e.edit(lines);
    const RunResult run = run_lines(lines);
    if (e.out.empty()) {
      expect_demo_outcome(run);
    } else {
      expect_outcome(run, e.out, 0);
    }
  }
}

// A one-token first line of twelve or more characters: its event ID was read before its
// token count was checked.
TEST(Robustness, FirstLineOfOneLongToken) {
  expect_outcome(run_text(with_nul("-29.60`\0000216086973.5\t-2.258\n"), demo_scenario().catalogue),
                 line_message("ErrorA09. File Format Error on the line ", 1, kUnreasonable), 0);
}

// --- Size --------------------------------------------------------------------------

// Many lines of one kind give the outcome of the lines they add to: zero-time thrust phases
// before the first arc (each starts where the ship is and lasts no time), arc lines after
// the last event (they close no arc), ships of one launch pair each (alternating IDs, no
// resources: at most 2 * exp(0) = 2 ships). bench_growth times these shapes at a million
// lines.
TEST(Robustness, ManyLinesOfOneKind) {
  const std::vector<std::string>& demo = demo_scenario().lines;
  const std::vector<std::string> launch = launch_pair();
  const std::string ship = tokens_of(demo.back())[0];
  constexpr int kCount = 9999;
  std::string phases = demo[0] + "\n" + demo[1] + "\n", tail = joined(demo), ships;
  for (int k = 0; k < kCount; ++k) {
    phases += "1\t-1\t64411\t0\t0\t0\n";
    tail += ship + "\t-1\t69807\t1e400\tnan\t-0\n";
    const std::string id = k % 2 == 0 ? "1" : "2";
    ships += with_token(launch[0], 0, id) + "\n" + with_token(launch[1], 0, id) + "\n";
  }
  for (std::size_t i = 2; i < demo.size(); ++i) phases += demo[i] + "\n";
  expect_demo_outcome(run_text(phases, demo_scenario().catalogue));
  expect_demo_outcome(run_text(tail, demo_scenario().catalogue));
  expect_outcome(run_text(ships, demo_scenario().catalogue),
                 "Error301. Mining Ship Number Error: The number of Mining Ships is 9999, "
                 "greater than the appropriable maximum number 2.\n",
                 3);
}

// --- Short catalogues --------------------------------------------------------------

std::vector<std::string> catalogue_lines() {
  std::vector<std::string> lines;
  std::string line;
  for (char c : demo_scenario().catalogue) {
    if (c == '\n') {
      lines.push_back(line);
      line.clear();
    } else {
      line += c;
    }
  }
  if (!line.empty()) lines.push_back(line);
  return lines;
}

TEST(Robustness, CatalogueWithFewerRowsLeavesTheRestZero) {
  // The demo visits asteroids numbered from 975 on; keep the header and 500 rows.
  const std::vector<std::string> rows = catalogue_lines();
  ASSERT_EQ(rows.size(), 60001u);
  std::string cut, zeros;
  for (std::size_t i = 0; i <= 500; ++i) cut += rows[i] + "\n";
  zeros = cut;
  for (int id = 501; id <= 60000; ++id) zeros += std::to_string(id) + " 0 0 0 0 0 0 0\n";
  const std::string solution = joined(demo_scenario().lines);
  const RunResult run = run_text(solution, cut);
  const RunResult explicit_zeros = run_text(solution, zeros);
  EXPECT_EQ(run.out, explicit_zeros.out);
  EXPECT_EQ(run.status, explicit_zeros.status);
  // A zero row has a = 0: an infinite mean motion puts the asteroid at a NaN position,
  // which no distance test rejects (NaN passes every limit test), so every rendezvous
  // with a missing asteroid is accepted.
  expect_demo_outcome(run);
  // A launch-only file needs no asteroid.
  expect_outcome(run_text(joined(launch_pair()), cut), kOneLaunchOnlyShip, 0);
}

}  // namespace
}  // namespace kavren::test
