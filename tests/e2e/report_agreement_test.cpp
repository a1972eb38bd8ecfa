// kavren-report states kavren-check's verdict exactly: on every error case and every
// synthesised valid scenario, its JSON's checker_output, exit_status and score_file equal
// the bytes, status and score file of kavren-check on the same files. Where kavren-check
// reports a missing or unreadable input, kavren-report ends with status 2.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <nlohmann/json.hpp>

#include "e2e/error_case.h"
#include "kavren/verify.h"
#include "support/e2e.h"

namespace kavren::test {
namespace {

// The in-memory verification must be the real one: any text gets a verdict.
bool verification_built_in() {
  return !kavren::verify(kavren::Catalogue::from_text(""), "").checker_output.empty();
}

void expect_agreement(const std::string& folder) {
  const RunResult check = run_in(folder, checker_binary());
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
  // Every mode gives the same verdict; "all" lists the printed finding among the others.
  const RunResult all = run_in(folder, KAVREN_REPORT_BIN, {"--json", "-"});
  const nlohmann::json every = nlohmann::json::parse(all.out);
  EXPECT_EQ(every.at("checker_output"), json.at("checker_output"));
  int first = 0;
  for (const auto& f : every.at("findings")) first += f.at("first").get<bool>();
  EXPECT_EQ(first, json.at("accepted").get<bool>() ? 0 : 1);
}

std::vector<ErrorCase> all_cases() {
  std::vector<ErrorCase> cases = input_error_cases();
  for (ErrorCase& c : event_error_cases()) cases.push_back(std::move(c));
  for (ErrorCase& c : physics_error_cases()) cases.push_back(std::move(c));
  return cases;
}

class ReportAgrees : public ::testing::TestWithParam<ErrorCase> {};

TEST_P(ReportAgrees, WithTheChecker) {
  if (!verification_built_in()) GTEST_SKIP() << "the in-memory verification is not built in";
  const ErrorCase& c = GetParam();
  Scenario scenario = demo_scenario();
  c.make(scenario);
  if (!scenario.args.empty()) GTEST_SKIP() << "kavren-report's arguments are its own";
  TempDir dir;
  if (scenario.write_catalogue) dir.write("KAVREN_Asteroids_Data.txt", scenario.catalogue);
  if (scenario.write_result) dir.write("Result.txt", scenario.result_text());
  if (scenario.prepare) scenario.prepare(dir.path());
  struct stat info {};
  const bool result_readable = stat((dir.path() + "/Result.txt").c_str(), &info) == 0 &&
                               S_ISREG(info.st_mode);
  if (!scenario.write_catalogue || !result_readable) {
    const RunResult report = run_in(dir.path(), KAVREN_REPORT_BIN);
    EXPECT_EQ(report.status, 2);
    EXPECT_EQ(report.out, "");
    return;
  }
  if (scenario.prepare) GTEST_SKIP() << "the folder's state is not the solution's";
  expect_agreement(dir.path());
}

INSTANTIATE_TEST_SUITE_P(Messages, ReportAgrees, ::testing::ValuesIn(all_cases()),
                         [](const ::testing::TestParamInfo<ErrorCase>& info) {
                           return info.param.name;
                         });

TEST(ReportAgreesOnValid, DemoAndSuite) {
  if (!verification_built_in()) GTEST_SKIP() << "the in-memory verification is not built in";
  TempDir dir;
  ASSERT_EQ(run_in(dir.path(), KAVREN_SYNTH_BIN, {"demo", dir.path() + "/demo"}).status, 0);
  ASSERT_EQ(run_in(dir.path(), KAVREN_SYNTH_BIN, {"suite", dir.path() + "/suite"}).status, 0);
  expect_agreement(dir.path() + "/demo");
  for (int k = 0; k < 5; ++k) expect_agreement(dir.path() + "/suite/case" + std::to_string(k));
}

}  // namespace
}  // namespace kavren::test
