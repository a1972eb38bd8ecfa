// kavren-polish's command line: a usage or input/output error ends with status 2, one
// line on standard error and nothing written; otherwise the polished file is written and
// the status says whether it is accepted.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/e2e.h"

namespace kavren::test {
namespace {

// One near miss (two arcs turned), synthesised once per test process.
struct NearMiss {
  std::string catalogue, result;
};
const NearMiss& near_miss() {
  static const NearMiss files = [] {
    TempDir dir;
    run_in(dir.path(), KAVREN_SYNTH_BIN, {"nearmiss", dir.path() + "/m", "--seed", "2"});
    return NearMiss{*dir.read("m/KAVREN_Asteroids_Data.txt"), *dir.read("m/Result.txt")};
  }();
  return files;
}

struct CliCase {
  const char* name;
  std::vector<std::string> args;
  int status;
  const char* err;           // standard error, whole
  const char* out_contains;  // in standard output
};

void PrintTo(const CliCase& c, std::ostream* os) {
  *os << c.name;
}

class Cli : public ::testing::TestWithParam<CliCase> {};

TEST_P(Cli, StatusAndFiles) {
  const CliCase& c = GetParam();
  TempDir dir;
  dir.write("Result.txt", near_miss().result);
  dir.write("KAVREN_Asteroids_Data.txt", near_miss().catalogue);
  const RunResult run = run_in(dir.path(), KAVREN_POLISH_BIN, c.args);
  EXPECT_EQ(run.status, c.status);
  EXPECT_EQ(run.err, c.err);
  EXPECT_NE(run.out.find(c.out_contains), std::string::npos) << run.out;
  EXPECT_EQ(*dir.read("Result.txt"), near_miss().result) << "the input is never changed";
  const std::optional<std::string> polished = dir.read("p.txt");
  EXPECT_EQ(polished.has_value(), c.status != 2);
  EXPECT_EQ(dir.read("p.json").has_value(), c.status != 2);
  if (c.status == 2) return;
  const RunResult check =
      run_check({{"Result.txt", *polished}, {"KAVREN_Asteroids_Data.txt", near_miss().catalogue}});
  EXPECT_EQ(check.out.rfind("Check successfully!", 0) == 0, c.status == 0) << check.out;
  EXPECT_NE(dir.read("p.json")->find("\"arcs\""), std::string::npos);
}

INSTANTIATE_TEST_SUITE_P(
    Polish, Cli,
    ::testing::Values(
        CliCase{"Polished",
                {"--out", "p.txt", "--json", "p.json", "--threads", "2"},
                0,
                "",
                "polished, "},
        CliCase{"TurnTooSmallToPolish",
                {"Result.txt", "--out", "p.txt", "--json", "p.json", "--max-degrees", "1e-5"},
                1,
                "",
                "not polished, a turn of"},
        CliCase{"NoOut",
                {"--json", "p.json"},
                2,
                "kavren-polish: --out is required (see --help)\n",
                ""},
        CliCase{"OutIsTheSolution",
                {"--out", "Result.txt", "--json", "p.json"},
                2,
                "kavren-polish: --out names the solution Result.txt; it is never overwritten\n",
                ""},
        CliCase{"OutIsTheSolutionByAnotherName",
                {"Result.txt", "--out", "./Result.txt"},
                2,
                "kavren-polish: --out names the solution Result.txt; it is never overwritten\n",
                ""},
        CliCase{"MissingSolution",
                {"none.txt", "--out", "p.txt", "--json", "p.json"},
                2,
                "kavren-polish: cannot read none.txt: No such file or directory\n",
                ""},
        CliCase{"MissingCatalogue",
                {"--catalogue", "c.txt", "--out", "p.txt", "--json", "p.json"},
                2,
                "kavren-polish: cannot read the catalogue c.txt: no such file or not readable\n",
                ""},
        CliCase{"OutInMissingFolder",
                {"--json", "p.json", "--out", "none/p.txt"},
                2,
                "kavren-polish: cannot write none/p.txt: No such file or directory\n",
                ""},
        CliCase{"SafetyOutOfRange",
                {"--safety", "2", "--out", "p.txt"},
                2,
                "kavren-polish: --safety: Value 2 not in range 0.000001 to 1.000000 (see --help)\n",
                ""}),
    [](const ::testing::TestParamInfo<CliCase>& info) { return std::string(info.param.name); });

}  // namespace
}  // namespace kavren::test
