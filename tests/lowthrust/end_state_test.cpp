// The state reached at an arc's end against the state written there: each tolerance
// (1000 km, 0.001 km/s, 0.001 kg) is met when the error equals it, and exceeded just above.
#include <gtest/gtest.h>

#include <cmath>

#include "console/checks.h"
#include "lowthrust/arc_integration.h"
#include "support/capture.h"

namespace {

TEST(EndState, ToleranceMetAtItsValueExceededAbove) {
  const double written[7] = {};
  const struct {
    int component;
    double error;
    const char* code;  // nullptr: accepted
  } cases[] = {{0, 1000.0, nullptr}, {1, std::nextafter(1000.0, 2000.0), "Error201"},
               {3, 0.001, nullptr},  {5, std::nextafter(0.001, 1.0), "Error202"},
               {6, 0.001, nullptr},  {6, std::nextafter(0.001, 1.0), "Error203"}};
  for (const auto& c : cases) {
    double reached[7] = {};
    reached[c.component] = c.error;
    const auto o = kavren::test::capture([&] { Judge_rvmf(reached, written, 41); });
    EXPECT_EQ(o.out.substr(0, 8), c.code == nullptr ? "" : c.code) << c.component << o.out;
  }
}

}  // namespace
