// Whole runs of kavren-check on synthesised scenarios that are valid by construction: the
// exact summary, the exact score file and status 0; kavren-report states the same verdict
// (its JSON's checker_output, exit_status and score_file equal kavren-check's bytes,
// status and score file on the same files; the error cases call this too).
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "support/e2e.h"
#include "support/error_case.h"

namespace kavren::test {

void expect_report_agrees(const std::string& folder, const RunResult& check) {
  const RunResult report = run_in(folder, KAVREN_REPORT_BIN, {"--json", "-", "--mode", "first"});
  ASSERT_EQ(report.status, check.out.rfind("Check successfully!", 0) == 0 ? 0 : 1) << report.err;
  const nlohmann::json json = nlohmann::json::parse(report.out);
  EXPECT_EQ(json.at("checker_output").get<std::string>(), check.out);
  EXPECT_EQ(json.at("exit_status").get<int>(), check.status);
  if (check.score) {
    EXPECT_EQ(json.at("score_file"), *check.score);
  } else {
    EXPECT_TRUE(json.at("score_file").is_null());
  }
}

namespace {

void synthesise(const TempDir& dir, std::vector<std::string> args) {
  args.insert(args.begin() + 1, dir.path() + "/case");
  const RunResult made = run_in(dir.path(), KAVREN_SYNTH_BIN, args);
  ASSERT_EQ(made.status, 0) << made.err;
}

void expect_accepted(const TempDir& dir, const std::string& folder) {
  const RunResult run = run_in(dir.path() + folder, checker_binary());
  EXPECT_EQ(run.out, dir.read(folder + "/expected_stdout.txt")) << folder;
  EXPECT_EQ(run.status, 0);
  ASSERT_TRUE(run.score.has_value());
  EXPECT_EQ(run.score, dir.read(folder + "/expected_ScoreData.txt"));
  expect_report_agrees(dir.path() + folder, run);
}

TEST(ValidScenarios, DemoSuiteAndSmallBenchAreAccepted) {
  TempDir demo, suite, bench;
  synthesise(demo, {"demo"});
  synthesise(suite, {"suite"});
  synthesise(bench, {"bench", "--ships", "4"});
  expect_accepted(demo, "/case");
  for (int k = 0; k < 5; ++k) expect_accepted(suite, "/case/case" + std::to_string(k));
  expect_accepted(bench, "/case");
}

// The small bench in every separator form, and its late-arrival form, gives the tab
// form's stdout, status and score file, with one and with two arc workers.
TEST(ValidScenarios, EverySeparatorFormReadsAsTheTabForm) {
  struct Outcome {
    RunResult valid, late;
  };
  auto run_form = [](const std::string& form, const std::string& workers) {
    TempDir dir, late;
    synthesise(dir, {"bench", "--ships", "4", "--separators", form});
    const std::string env = "KAVREN_THREADS=" + workers;
    Outcome outcome{run_in(dir.path() + "/case", checker_binary(), {}, {env}), {}};
    late.write("KAVREN_Asteroids_Data.txt", *dir.read("/case/KAVREN_Asteroids_Data.txt"));
    late.write("Result.txt", *dir.read("/case/Result-late-arrivals.txt"));
    outcome.late = run_in(late.path(), checker_binary(), {}, {env});
    return outcome;
  };
#ifdef KAVREN_SANITIZED
  const std::vector<const char*> worker_counts = {"2"};  // the release build runs both
#else
  const std::vector<const char*> worker_counts = {"1", "2"};
#endif
  for (const char* workers : worker_counts) {
    const Outcome tab = run_form("tab", workers);
    ASSERT_EQ(tab.valid.status, 0) << tab.valid.out;
    ASSERT_EQ(tab.late.out.rfind("Error002.", 0), 0u) << tab.late.out;
    for (const char* form : {"blank", "blanks", "mixed"}) {
      const Outcome other = run_form(form, workers);
      for (const auto& [got, want] :
           {std::pair(&other.valid, &tab.valid), {&other.late, &tab.late}}) {
        EXPECT_EQ(got->out, want->out) << form << ", " << workers << " worker(s)";
        EXPECT_EQ(got->status, want->status) << form;
        EXPECT_EQ(got->score, want->score) << form;
      }
    }
  }
}

}  // namespace
}  // namespace kavren::test
