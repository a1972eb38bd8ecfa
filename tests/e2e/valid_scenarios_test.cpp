// Whole runs of kavren-check on synthesised scenarios that are valid by construction:
// the exact summary, the exact score file and status 0.
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <string>

#include "support/e2e.h"

namespace {

using kavren::test::checker_binary;
using kavren::test::run_in;
using kavren::test::TempDir;

std::string synth_binary() { return KAVREN_SYNTH_BIN; }

void synthesise(const TempDir& dir, const std::vector<std::string>& args) {
  std::vector<std::string> full = args;
  full.insert(full.begin() + 1, dir.path() + "/case");
  auto made = run_in(dir.path(), synth_binary(), full);
  ASSERT_EQ(made.status, 0) << made.err;
}

void expect_accepted(const std::string& folder) {
  auto run = run_in(folder, checker_binary());
  std::ifstream stdout_file(folder + "/expected_stdout.txt", std::ios::binary);
  std::ifstream score_file(folder + "/expected_ScoreData.txt", std::ios::binary);
  std::string expected_stdout((std::istreambuf_iterator<char>(stdout_file)), {});
  std::string expected_score((std::istreambuf_iterator<char>(score_file)), {});
  EXPECT_EQ(run.out, expected_stdout) << folder;
  EXPECT_EQ(run.status, 0);
  ASSERT_TRUE(run.score.has_value());
  EXPECT_EQ(*run.score, expected_score);
}

TEST(ValidScenarios, DemoIsAcceptedWithManyShipsAndMinedAsteroids) {
  TempDir dir;
  synthesise(dir, {"demo"});
  expect_accepted(dir.path() + "/case");
  auto again = run_in(dir.path() + "/case", checker_binary());
  EXPECT_NE(again.out.find("Check successfully!\n"), std::string::npos);
}

TEST(ValidScenarios, EverySuiteCaseIsAccepted) {
  TempDir dir;
  synthesise(dir, {"suite"});
  for (int k = 0; k < 5; ++k) expect_accepted(dir.path() + "/case/case" + std::to_string(k));
}

TEST(ValidScenarios, SmallBenchCaseIsAccepted) {
  TempDir dir;
  synthesise(dir, {"bench", "--ships", "4"});
  expect_accepted(dir.path() + "/case");
}

TEST(ValidScenarios, SameSeedSameBytes) {
  TempDir a, b;
  synthesise(a, {"demo", "--seed", "5"});
  synthesise(b, {"demo", "--seed", "5"});
  for (const char* name : {"KAVREN_Asteroids_Data.txt", "Result.txt", "expected_ScoreData.txt"}) {
    EXPECT_EQ(a.read(std::string("case/") + name), b.read(std::string("case/") + name)) << name;
  }
}

}  // namespace
