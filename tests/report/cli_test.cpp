// kavren-report's command line: every usage or input/output error ends with status 2,
// one line on standard error naming the file and the reason, and nothing written.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <string>
#include <vector>

#include "support/e2e.h"

namespace kavren::test {
namespace {

struct UsageCase {
  const char* name;
  std::vector<std::string> args;  // --json and --html outputs are added to each
  bool write_result;              // a Result.txt in the folder
  const char* message;            // standard error, whole
};

std::vector<UsageCase> usage_cases() {
  return {
      {"UnknownOption",
       {"--bogus"},
       true,
       "kavren-report: The following argument was not expected: --bogus (see --help)\n"},
      {"BadMode",
       {"--mode", "some"},
       true,
       "kavren-report: --mode: some not in {all,first} (see --help)\n"},
      {"MissingSolution",
       {"nothere.txt"},
       true,
       "kavren-report: cannot read nothere.txt: No such file or directory\n"},
      {"NoResultInFolder",
       {},
       false,
       "kavren-report: cannot read Result.txt: No such file or directory\n"},
      {"DirectoryAsSolution",
       {"folder"},
       true,
       "kavren-report: cannot read folder: it is a directory\n"},
      {"MissingCatalogue",
       {"--catalogue", "cat.txt"},
       true,
       "kavren-report: cannot read the catalogue cat.txt: no such file or not readable\n"},
      {"DirectoryAsCatalogue",
       {"--catalogue", "folder"},
       true,
       "kavren-report: cannot read the catalogue folder: it is a directory\n"},
      {"StandardInputTwice",
       {"-", "-"},
       true,
       "kavren-report: standard input can be read only once\n"},
      {"OutputIntoDirectory",
       {"--json", "folder"},
       true,
       "kavren-report: cannot write folder: it is a directory\n"},
      {"OutputInMissingFolder",
       {"--html", "none/page.html"},
       true,
       "kavren-report: cannot write none/page.html: No such file or directory\n"},
  };
}

void PrintTo(const UsageCase& c, std::ostream* os) {
  *os << c.name;
}

class UsageErrors : public ::testing::TestWithParam<UsageCase> {};

TEST_P(UsageErrors, StatusTwoOneLineNothingWritten) {
  const UsageCase& c = GetParam();
  TempDir dir;
  if (c.write_result) dir.write("Result.txt", "1\t0\t64400\n");
  dir.write("KAVREN_Asteroids_Data.txt", "ID\n");
  mkdir((dir.path() + "/folder").c_str(), 0755);
  std::vector<std::string> args = c.args;
  for (const std::string option : {"--json", "--html"}) {
    if (std::find(args.begin(), args.end(), option) != args.end()) continue;
    args.push_back(option);
    args.push_back(option == "--json" ? "out.json" : "out.html");
  }
  const RunResult run = run_in(dir.path(), KAVREN_REPORT_BIN, args);
  EXPECT_EQ(run.status, 2);
  EXPECT_EQ(run.err, c.message);
  EXPECT_EQ(run.out, "");
  EXPECT_FALSE(dir.read("out.json"));
  EXPECT_FALSE(dir.read("out.html"));
  EXPECT_FALSE(dir.read("ScoreData.txt"));
}

INSTANTIATE_TEST_SUITE_P(Cli, UsageErrors, ::testing::ValuesIn(usage_cases()),
                         [](const ::testing::TestParamInfo<UsageCase>& info) {
                           return std::string(info.param.name);
                         });

TEST(Cli, Help) {
  TempDir dir;
  const RunResult help = run_in(dir.path(), KAVREN_REPORT_BIN, {"--help"});
  EXPECT_EQ(help.status, 0);
  EXPECT_NE(help.out.find("Usage: kavren-report [OPTIONS] [SOLUTION...]"), std::string::npos);
}

}  // namespace
}  // namespace kavren::test
