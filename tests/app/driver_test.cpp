#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <utility>

#include "core/summary.h"
#include "kavren/verify.h"

namespace {

TEST(Summary, UsesTheStreamsDefaultSixDigitFormat) {
  EXPECT_EQ(kavren::summary_text(3, 12, 12345.678),
            "Check successfully!\n"
            "The number of mining ships is 3 ;\n"
            "The number of mined asteroids is 12 ;\n"
            "The total resource mass is 12345.7 kg.\n");
  EXPECT_NE(
      kavren::summary_text(1, 0, 1234567.0).find("The total resource mass is 1.23457e+06 kg.\n"),
      std::string::npos);
}

// KAVREN_THREADS names the workers of every program: a positive whole number, at most
// 256; anything else leaves the choice to the machine.
TEST(Workers, KavrenThreadsIsAPositiveWholeNumber) {
  const unsigned cores = std::thread::hardware_concurrency();
  const int machine = cores == 0 ? 1 : static_cast<int>(cores < 256 ? cores : 256);
  EXPECT_EQ(kavren::default_workers(), machine);
  const std::pair<const char*, int> cases[] = {
      {"3", 3},       {"256", 256},      {"257", 256},  {"99999999999999999999", 256},
      {"0", machine}, {"-2", machine},   {"", machine}, {"3x", machine},
      {" 4", 4},      {nullptr, machine}};
  for (const auto& [text, workers] : cases) {
    EXPECT_EQ(kavren::workers_from_text(text), workers) << '"' << (text ? text : "null") << '"';
  }
}

}  // namespace
