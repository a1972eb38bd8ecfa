#include <gtest/gtest.h>

#include "support/e2e.h"

namespace {

using kavren::test::run_check;

const char kError000[] =
    "Error000. The number of input parameters is incorrect.\n"
    "The input is consisted with two files: the front one contains the "
    "KAVREN_Asteroids_Data.txt data, and the behind one takes the Result.txt.\n";

TEST(CommandLine, AnyArgumentIsRefusedWithoutReadingAnything) {
  for (const auto& args : {std::vector<std::string>{"x"}, {"Result.txt"}, {"a", "b", "c"}}) {
    auto run = run_check({}, args);
    EXPECT_EQ(run.out, kError000);
    EXPECT_EQ(run.status, 0);
    EXPECT_FALSE(run.score.has_value());
  }
}

}  // namespace
