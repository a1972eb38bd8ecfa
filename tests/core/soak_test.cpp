// Many verifications in one process, as an optimiser runs them: every one gives the report
// of the first of its kind and no file descriptor is left open; many threads mixing two
// catalogues give the reports one thread gives. KAVREN_SOAK_VERIFICATIONS and
// KAVREN_SOAK_ROUNDS make the long form of scripts/soak.sh (defaults 1,000 and 25), which
// also measures resident memory (bench_soak).
#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include "kavren/verify.h"
#include "support/e2e.h"
#include "support/error_case.h"
#include "support/same_report.h"

namespace kavren::test {
namespace {

long count_from_environment(const char* name, long fallback) {
  const char* text = std::getenv(name);
  return text != nullptr && std::atol(text) > 0 ? std::atol(text) : fallback;
}

long open_descriptors() {
  long n = 0;
  for (auto it = std::filesystem::directory_iterator("/proc/self/fd");
       it != std::filesystem::directory_iterator(); ++it) {
    ++n;
  }
  return n;
}

// The demo, the demo with a thrust over the limit, the demo cut off inside a line, and
// text that is no solution: valid, failing and malformed.
std::vector<std::string> solutions() {
  const Scenario& demo = demo_scenario();
  Scenario failing = demo;
  failing.lines[4] = with_token(failing.lines[4], 3, "0.7");
  const std::string text = demo.result_text();
  return {text, failing.result_text(), text.substr(0, text.size() / 3), "x\n"};
}

void expect_same(const Report& a, const Report& b) {
  EXPECT_EQ(report_difference(a, b, false), "");
}

TEST(Soak, RepeatedVerificationsGiveOneReportAndCloseTheirFiles) {
#ifdef KAVREN_SANITIZED
  constexpr long kVerifications = 250;  // the release build runs 1,000
#else
  constexpr long kVerifications = 1000;
#endif
  const long verifications = count_from_environment("KAVREN_SOAK_VERIFICATIONS", kVerifications);
  const Catalogue catalogue = Catalogue::from_text(demo_scenario().catalogue);
  const std::vector<std::string> texts = solutions();
  const long descriptors = open_descriptors();
  std::vector<Report> first(texts.size() * 2);  // per (solution, mode)
  for (long k = 0; k < verifications; ++k) {
    const std::size_t kind = static_cast<std::size_t>(k) % first.size();
    Options options;
    options.mode = kind % 2 ? Mode::all : Mode::first;
    options.workers = 1 + static_cast<int>(k % 3);
    options.trajectories = k % 5 == 0;
    const Report report = verify(catalogue, texts[kind / 2], options);
    ASSERT_EQ(report.outcome, Outcome::verified);
    if (static_cast<std::size_t>(k) < first.size()) {
      first[kind] = report;
    } else {
      expect_same(report, first[kind]);
    }
  }
  EXPECT_TRUE(first[0].accepted);
  EXPECT_FALSE(first[2].accepted);
  EXPECT_EQ(open_descriptors(), descriptors);
}

TEST(Soak, ThreadsMixingTwoCataloguesGiveTheReportsOfOne) {
  const long rounds = count_from_environment("KAVREN_SOAK_ROUNDS", 25);
  // The other catalogue holds a default orbit in every row: the demo fails there.
  const std::vector<Catalogue> catalogues = {Catalogue::from_text(demo_scenario().catalogue),
                                             Catalogue::from_text(catalogue_text())};
  const std::vector<std::string> texts = solutions();
  auto options_for = [](std::size_t k) {
    Options options;
    options.mode = k % 2 ? Mode::all : Mode::first;
    options.workers = 1;
    return options;
  };
  // One report per (catalogue, solution, mode), from one thread.
  const std::size_t kinds = catalogues.size() * texts.size() * 2;
  std::vector<Report> expected(kinds);
  for (std::size_t k = 0; k < kinds; ++k) {
    expected[k] = verify(catalogues[k / 2 % 2], texts[k / 4], options_for(k));
  }
  ASSERT_NE(expected[0].checker_output, expected[2].checker_output);

  constexpr int kThreads = 8;
  std::vector<std::vector<Report>> got(kThreads);
  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t) {
    threads.emplace_back([&, t] {
      for (long r = 0; r < rounds; ++r) {
        const std::size_t k = static_cast<std::size_t>(t * 7 + r * 3) % kinds;
        // Neither the number of arc workers nor keeping the states may change a report.
        Options options = options_for(k);
        options.workers = 1 + static_cast<int>((t + r) % 3);
        options.trajectories = (t + r) % 2 == 0;
        got[t].push_back(verify(catalogues[k / 2 % 2], texts[k / 4], options));
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  for (int t = 0; t < kThreads; ++t) {
    for (long r = 0; r < rounds; ++r) {
      expect_same(got[t][r], expected[static_cast<std::size_t>(t * 7 + r * 3) % kinds]);
    }
  }
}

}  // namespace
}  // namespace kavren::test
