#include <gtest/gtest.h>

#include <sstream>

#include "app/summary.h"

namespace {

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
