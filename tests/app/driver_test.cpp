#include <gtest/gtest.h>

#include "core/summary.h"

namespace {

TEST(Summary, UsesTheStreamsDefaultSixDigitFormat) {
  EXPECT_EQ(kavren::summary_text(3, 12, 12345.678),
            "Check successfully!\n"
            "The number of mining ships is 3 ;\n"
            "The number of mined asteroids is 12 ;\n"
            "The total resource mass is 12345.7 kg.\n");
  EXPECT_NE(kavren::summary_text(1, 0, 1234567.0).find("The total resource mass is 1.23457e+06 kg.\n"), std::string::npos);
}

}  // namespace
