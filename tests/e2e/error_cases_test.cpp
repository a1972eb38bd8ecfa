// Every error message of the program, reached from the valid demo by one targeted
// change, with the whole stdout, the exit status and the score file asserted.
#include <gtest/gtest.h>

#include <cmath>
#include <regex>
#include <set>
#include <string>
#include <vector>

#include "kavren/verify.h"
#include "support/e2e.h"
#include "support/error_case.h"

namespace kavren::test {
namespace {

// Two faults in stages that come one after the other (the lines, the grouping, each
// ship's assembly, each ship's events, the ledger, the arcs), the later stage's fault
// earlier in the file: the earlier stage's message is the verdict, although the ships
// before it have been assembled, checked and integrated while the file was still read.
void add_precedence_cases(std::vector<ErrorCase>& cases) {
  static const struct {
    const char* earlier_stage;
    const char* later_stage;
  } pairs[] = {
      {"Error002_LastLineAfterMissionEnd", "Error401_FirstLineOfArc"},
      {"ErrorA23_TwoAsteroidsInOnePair", "Error401_FirstLineOfArc"},
      {"Error005_RendezvousBeforePreviousOne", "Error502_LaunchSecondPosition"},
      {"Error501_SecondShipLaunchEpoch", "Error401_ThrustLineInPhase"},
      {"Error803_FirstVisitLeaves39kg", "Error401_FirstLineOfArc"},
      // Within one ship: its launch before the balance of its resources.
      {"Error501_LaunchSecondEpoch", "Error801_DropShortOfCollections"},
  };
  for (const auto& pair : pairs) {
    const ErrorCase earlier = case_named(pair.earlier_stage);
    const ErrorCase later = case_named(pair.later_stage);
    cases.push_back(
        {earlier.name + "_Before_" + later.name, earlier.code, [earlier, later](Scenario& s) {
           later.make(s);
           return earlier.make(s);
         }});
  }
}

std::vector<ErrorCase> all_cases() {
  std::vector<ErrorCase> cases = all_error_cases();
  add_precedence_cases(cases);
  return cases;
}

class ErrorCases : public ::testing::TestWithParam<ErrorCase> {};

TEST_P(ErrorCases, WholeOutcome) {
  const ErrorCase& c = GetParam();
  Scenario scenario = demo_scenario();
  const Expectation expected = c.make(scenario);
  ASSERT_EQ(expected.out.compare(0, c.code.size(), c.code), 0)
      << "case " << c.name << " expects a message other than " << c.code;

  TempDir dir;
  if (scenario.write_catalogue) dir.write("KAVREN_Asteroids_Data.txt", scenario.catalogue);
  if (scenario.write_result) dir.write("Result.txt", scenario.result_text());
  if (scenario.prepare) scenario.prepare(dir.path());
  const RunResult run = run_in(dir.path(), checker_binary(), scenario.args);
  EXPECT_EQ(run.out, expected.out);
  EXPECT_EQ(run.status, expected.status);
  EXPECT_EQ(run.score, expected.score);
#ifndef KAVREN_SANITIZED
  // The report's agreement, and the in-memory run of kavren-check's own mode, are the
  // release build's: the sanitizer build checks the memory of the checker's run and of
  // the report of every finding.
  if (scenario.write_catalogue && scenario.write_result && scenario.args.empty() &&
      !scenario.prepare) {
    expect_report_agrees(dir.path(), run);
  }
  const std::vector<Mode> modes = {Mode::first, Mode::all};
#else
  const std::vector<Mode> modes = {Mode::all};
#endif

  // The same files verified in memory, in both modes, give the checker's verdict; the
  // first finding is the one it prints, and its margin says that the rule was violated.
  if (!scenario.write_catalogue || !scenario.write_result || !scenario.args.empty() ||
      scenario.prepare) {
    return;
  }
  // The demo's catalogue is read once.
  static const Catalogue demo = Catalogue::from_text(demo_scenario().catalogue);
  const Catalogue catalogue = scenario.catalogue == demo_scenario().catalogue
                                  ? demo
                                  : Catalogue::from_text(scenario.catalogue);
  for (Mode mode : modes) {
    Options options;
    options.mode = mode;
    options.workers = 2;
    const Report report = verify(catalogue, scenario.result_text(), options);
    EXPECT_EQ(report.checker_output, expected.out);
    EXPECT_EQ(report.exit_status, expected.status);
    EXPECT_EQ(report.score_file, expected.score);
    EXPECT_EQ(report.accepted, expected.score.has_value());
    if (report.accepted) continue;
    ASSERT_FALSE(report.findings.empty());
    const Finding& first = report.findings.front();
    EXPECT_TRUE(first.first);
    EXPECT_EQ(first.message, expected.out);
    if (mode == Mode::first) {
      EXPECT_EQ(report.findings.size(), 1u);
    }
    // The line a message names is the finding's first (the short arc's message prints
    // the 0-based index of its opening line).
    std::smatch named;
    if (first.message.rfind("ErrorA03:", 0) != 0 &&
        std::regex_search(first.message, named, std::regex("on the line ?([0-9]+)"))) {
      ASSERT_FALSE(first.lines.empty());
      EXPECT_EQ(first.lines[0], std::stoll(named[1]));
    }
    if (!first.quantity.empty() && !std::isnan(first.value)) {
      EXPECT_LE(first.margin, 0.0) << first.code << " " << first.value << " " << first.limit;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Messages, ErrorCases, ::testing::ValuesIn(all_cases()),
                         [](const ::testing::TestParamInfo<ErrorCase>& info) {
                           return info.param.name;
                         });

// The messages the program can print; the cases above must reach each of them.
TEST(ErrorCoverage, EveryMessageIsReached) {
  std::set<std::string> required = {
      "Error000", "ErrorA00:", "ErrorA01", "ErrorA02", "ErrorA03:",    "ErrorA03.", "Error001",
      "Error002", "Error003",  "Error004", "Error005", "Error101",     "Error201",  "Error202",
      "Error203", "Error301",  "Error401", "Error901", kScoreFileError};
  for (int k = 4; k <= 23; ++k) {
    required.insert(std::string("ErrorA") + (k < 10 ? "0" : "") + std::to_string(k));
  }
  for (int family : {5, 6, 7, 8}) {
    const int last = family == 5 ? 7 : family == 6 ? 7 : family == 7 ? 5 : 7;
    for (int k = 1; k <= last; ++k) {
      if (family == 6 && k == 6) continue;  // there is no Error606
      required.insert("Error" + std::to_string(family * 100 + k));
    }
  }
  std::set<std::string> reached;
  for (const ErrorCase& c : all_cases()) reached.insert(c.code);
  std::string missing;
  for (const std::string& code : required) {
    if (reached.count(code) == 0) missing += " " + code;
  }
  EXPECT_TRUE(missing.empty()) << "messages no case reaches:" << missing;
}

}  // namespace
}  // namespace kavren::test
