// kavren-report states kavren-check's verdict exactly: its JSON's checker_output,
// exit_status and score_file equal the bytes, status and score file of kavren-check on
// the same files (the error cases call this too).
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "support/error_case.h"
#include "kavren/verify.h"
#include "support/e2e.h"

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

TEST(ReportAgreesOnValid, DemoAndSuite) {
  TempDir dir;
  ASSERT_EQ(run_in(dir.path(), KAVREN_SYNTH_BIN, {"demo", dir.path() + "/demo"}).status, 0);
  ASSERT_EQ(run_in(dir.path(), KAVREN_SYNTH_BIN, {"suite", dir.path() + "/suite"}).status, 0);
  for (std::string folder : {std::string("/demo"), std::string("/suite/case0"),
                             std::string("/suite/case3")}) {
    folder = dir.path() + folder;
    expect_report_agrees(folder, run_in(folder, checker_binary()));
  }
}

}  // namespace kavren::test
