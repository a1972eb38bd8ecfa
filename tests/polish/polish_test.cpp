// kavren::polish on synthesised near misses: every polished file is accepted by
// kavren-check with the verdict of the valid solution the miss was made from, differs from
// its input only in the thrust numbers of the failing arcs, keeps every thrust at or below
// 0.6 N and does not depend on the number of threads; what cannot be polished is refused
// with its reason and left as it is.
#include "kavren/polish.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "report/render.h"
#include "support/e2e.h"
#include "support/error_case.h"

namespace kavren::test {
namespace {

std::vector<std::string> split_lines(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  return lines;
}

double magnitude(const std::string& line) {
  const double x = token(line, 3), y = token(line, 4), z = token(line, 5);
  return std::sqrt(x * x + y * y + z * z);
}

// The angle (degrees) between the thrust vectors of two lines.
double turn_degrees(const std::string& a, const std::string& b) {
  const double u[3] = {token(a, 3), token(a, 4), token(a, 5)};
  const double v[3] = {token(b, 3), token(b, 4), token(b, 5)};
  const double c[3] = {u[1] * v[2] - u[2] * v[1], u[2] * v[0] - u[0] * v[2],
                       u[0] * v[1] - u[1] * v[0]};
  const double dot = u[0] * v[0] + u[1] * v[1] + u[2] * v[2];
  return std::atan2(std::sqrt(c[0] * c[0] + c[1] * c[1] + c[2] * c[2]), dot) * 57.295779513082323;
}

struct NearMissCase {
  const char* name;
  int seed;
  int arcs;
  int threads;
};

void PrintTo(const NearMissCase& c, std::ostream* os) {
  *os << c.name;
}

class NearMisses : public ::testing::TestWithParam<NearMissCase> {};

TEST_P(NearMisses, PolishedFileIsAcceptedAndOnlyThrustOfFailingArcsChanged) {
  const NearMissCase& c = GetParam();
  TempDir dir;
  const std::string folder = dir.path() + "/case";
  ASSERT_EQ(run_in(dir.path(), KAVREN_SYNTH_BIN,
                   {"nearmiss", folder, "--seed", std::to_string(c.seed), "--arcs",
                    std::to_string(c.arcs)})
                .status,
            0);
  const auto file = [&](const char* name) { return *dir.read(std::string("case/") + name); };
  const std::string input = file("Result.txt");
  std::set<long long> planted;  // end lines of the turned arcs
  for (const std::string& row : split_lines(file("misses.txt"))) {
    if (row.compare(0, 4, "ship") != 0) planted.insert(static_cast<long long>(token(row, 1)));
  }
  ASSERT_EQ(planted.size(), static_cast<std::size_t>(c.arcs));

  const Catalogue catalogue = Catalogue::from_text(file("KAVREN_Asteroids_Data.txt"));
  PolishOptions options;
  options.threads = c.threads;
  const PolishResult r = polish(catalogue, input, options);
  EXPECT_TRUE(r.report.accepted) << r.report.checker_output;
  EXPECT_TRUE(r.left.empty());
  // The verdict and score file of the valid solution the miss was made from.
  const RunResult check = run_check(
      {{"Result.txt", r.text}, {"KAVREN_Asteroids_Data.txt", file("KAVREN_Asteroids_Data.txt")}});
  EXPECT_EQ(check.out, file("expected_stdout.txt"));
  EXPECT_EQ(check.score, file("expected_ScoreData.txt"));

  std::set<long long> ends;
  const std::vector<std::string> before = split_lines(input), after = split_lines(r.text);
  ASSERT_EQ(before.size(), after.size());
  std::vector<bool> inside(before.size() + 1, false);
  for (const ArcPolish& a : r.arcs) {
    ends.insert(a.end_line);
    EXPECT_TRUE(a.polished) << a.reason;
    EXPECT_LE(a.after[0], 500.0);
    EXPECT_LE(a.after[1], 0.0005);
    EXPECT_LE(a.after[2], 0.0005);
    EXPECT_GT(a.before[0], 1000.0);
    EXPECT_LE(a.before[0], 20000.0 * 1.03);
    double largest = 0.0;
    for (long long line = a.first_line; line <= a.last_line; ++line) {
      inside[static_cast<std::size_t>(line)] = true;
      const std::string& was = before[static_cast<std::size_t>(line - 1)];
      const std::string& now = after[static_cast<std::size_t>(line - 1)];
      if (was != now) largest = std::max(largest, turn_degrees(was, now));
    }
    EXPECT_NEAR(a.max_turn_degrees, largest, 1e-9);
    EXPECT_LE(a.max_turn_degrees, options.max_degrees);
  }
  EXPECT_EQ(ends, planted);
  for (std::size_t k = 0; k < before.size(); ++k) {
    if (before[k] == after[k]) continue;
    EXPECT_TRUE(inside[k + 1]) << "line " << k + 1 << " is outside every failing arc";
    const std::vector<std::string> was = tokens_of(before[k]), now = tokens_of(after[k]);
    ASSERT_EQ(was.size(), 6u);
    ASSERT_EQ(now.size(), 6u);
    for (int t = 0; t < 3; ++t) EXPECT_EQ(was[t], now[t]) << "line " << k + 1;
    EXPECT_GT(magnitude(before[k]), 0.0) << "a zero-thrust line changed: " << k + 1;
    EXPECT_LE(magnitude(after[k]), 0.6) << "line " << k + 1;
    // Written in the shortest form that reads back: at most 17 significant digits.
    for (int t = 3; t < 6; ++t) EXPECT_LE(now[t].size(), 24u) << now[t];
  }
  // The threads share the arcs, not the result.
  options.threads = 1;
  EXPECT_EQ(polish(catalogue, input, options).text, r.text);
}

INSTANTIATE_TEST_SUITE_P(Polish, NearMisses,
                         ::testing::Values(NearMissCase{"OneArc", 4, 1, 2},
                                           NearMissCase{"TwoArcs", 2, 2, 3},
                                           NearMissCase{"ThreeArcs", 3, 3, 2},
                                           NearMissCase{"ThreeArcsOtherSeed", 8, 3, 4}),
                         [](const ::testing::TestParamInfo<NearMissCase>& info) {
                           return std::string(info.param.name);
                         });

// The demo with one change: a pure coast that misses (ship 3 launched 3 m/s faster), or a
// rendezvous of the thrusting ship moved 1100 km (Error704, and the arcs on both sides of
// it miss).
struct RefusalCase {
  const char* name;
  int ship;
  int event_id;  // the event whose lines are changed: 0 the launch, else a rendezvous
  int token;     // the token changed on the event's second line (and first, when a rendezvous)
  double delta;
  std::vector<std::string> left;  // codes left as they are
  bool polished_any;              // some arc polished
  const char* reason;             // in the left findings' reasons, else the refused arcs'
  const char* hint;               // kavren-report's word beside the failing arc
};

void PrintTo(const RefusalCase& c, std::ostream* os) {
  *os << c.name;
}

class Refusals : public ::testing::TestWithParam<RefusalCase> {};

TEST_P(Refusals, FindingsThatCannotBePolishedStayWithTheirReason) {
  const RefusalCase& c = GetParam();
  std::vector<std::string> lines = demo_scenario().lines;
  int seen = 0;
  for (std::string& line : lines) {
    const std::vector<std::string> t = tokens_of(line);
    if (t.size() != 10 || std::stoi(t[0]) != c.ship) continue;
    const int id = std::stoi(t[1]);
    if (c.event_id == 0 ? id != 0 : id < 1) continue;
    // The launch's second line; both lines of the ship's first rendezvous.
    if (++seen == 1 && c.event_id == 0) continue;
    if (seen > 2) break;
    line = with_token(line, c.token, std::to_string(token(line, c.token) + c.delta));
  }
  std::string text;
  for (const std::string& line : lines) text += line + "\n";
  const Catalogue catalogue = Catalogue::from_text(demo_scenario().catalogue);
  const PolishResult r = polish(catalogue, text, {});
  Options all;
  all.mode = Mode::all;
  const std::string shown =
      report::render_text({"Result.txt", text, verify(catalogue, text, all)}, {false});
  EXPECT_NE(shown.find(c.hint), std::string::npos) << shown;
  std::vector<std::string> left;
  for (const LeftFinding& f : r.left) {
    left.push_back(f.code);
    EXPECT_NE(f.reason.find(c.reason), std::string::npos) << f.reason;
  }
  EXPECT_EQ(left, c.left);
  ASSERT_FALSE(r.arcs.empty());
  bool polished = false;
  // What remains is exactly what was left and the findings of the arcs not polished.
  std::vector<std::string> expected = c.left, remaining;
  for (const ArcPolish& a : r.arcs) {
    polished = polished || a.polished;
    if (a.polished) continue;
    EXPECT_FALSE(a.reason.empty());
    expected.insert(expected.end(), a.codes.begin(), a.codes.end());
    if (!c.polished_any) {
      EXPECT_NE(a.reason.find(c.reason), std::string::npos) << a.reason;
    }
  }
  EXPECT_EQ(polished, c.polished_any);
  for (const Finding& f : r.report.findings) remaining.push_back(f.code);
  if (!c.polished_any) {
    EXPECT_EQ(r.text, text);
  }
  std::sort(expected.begin(), expected.end());
  std::sort(remaining.begin(), remaining.end());
  EXPECT_EQ(remaining, expected);
  EXPECT_FALSE(r.report.accepted);
}

INSTANTIATE_TEST_SUITE_P(
    Polish, Refusals,
    ::testing::Values(RefusalCase{"CoastOnlyMiss",
                                  3,
                                  0,
                                  6,
                                  0.003,
                                  {},
                                  false,
                                  "no thrust to vary",
                                  "has no thrust: kavren-polish cannot fix it"},
                      RefusalCase{"MissAtAnEvent",
                                  5,
                                  1,
                                  3,
                                  1100.0,
                                  {"Error704", "Error704"},
                                  true,
                                  "an event against its body",
                                  "has thrust: kavren-polish can turn it"}),
    [](const ::testing::TestParamInfo<RefusalCase>& info) { return std::string(info.param.name); });

TEST(Polish, OptionsOutOfRangeAreRefused) {
  const Catalogue catalogue = Catalogue::from_text("ID\n");
  for (const auto& [safety, degrees] :
       {std::pair{0.0, 10.0}, std::pair{1.5, 10.0}, std::pair{0.5, 0.0}, std::pair{0.5, 91.0}}) {
    PolishOptions options;
    options.safety = safety;
    options.max_degrees = degrees;
    EXPECT_THROW(polish(catalogue, "", options), std::invalid_argument);
  }
}

}  // namespace
}  // namespace kavren::test
