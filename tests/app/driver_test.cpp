#include <gtest/gtest.h>

#include <sstream>

#include "app/summary.h"
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

TEST(Summary, UsesTheStreamsDefaultSixDigitFormat) {
  std::ostringstream out;
  kavren::print_summary(out, 3, 12, 12345.678);
  EXPECT_EQ(out.str(),
            "Check successfully!\n"
            "The number of mining ships is 3 ;\n"
            "The number of mined asteroids is 12 ;\n"
            "The total resource mass is 12345.7 kg.\n");
  std::ostringstream big;
  kavren::print_summary(big, 1, 0, 1234567.0);
  EXPECT_NE(big.str().find("The total resource mass is 1.23457e+06 kg.\n"), std::string::npos);
}

}  // namespace
