#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <thread>
#include <utility>

#include "app/driver.h"
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

// KAVREN_THREADS names the arc workers: a positive whole number, at most 256; anything
// else leaves the choice to the machine.
TEST(Workers, KavrenThreadsIsAPositiveWholeNumber) {
  const char* before = std::getenv("KAVREN_THREADS");
  const std::string kept = before ? before : "";
  const unsigned cores = std::thread::hardware_concurrency();
  const int machine = cores == 0 ? 1 : static_cast<int>(cores < 256 ? cores : 256);
  const std::pair<const char*, int> cases[] = {
      {"3", 3}, {"1000", 256}, {"0", machine}, {"-2", machine}, {"", machine}, {"3x", machine}};
  for (const auto& [text, workers] : cases) {
    setenv("KAVREN_THREADS", text, 1);
    EXPECT_EQ(kavren::workers_from_environment(), workers) << '"' << text << '"';
  }
  unsetenv("KAVREN_THREADS");
  EXPECT_EQ(kavren::workers_from_environment(), machine);
  if (before) setenv("KAVREN_THREADS", kept.c_str(), 1);
}

}  // namespace
