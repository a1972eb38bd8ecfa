// The findings core through its API: every independent fault of a scenario found in one
// run, with the margin the fault alone gives; the constraint table of a valid solution.
// (Many threads at once: tests/core/soak_test.cpp.)
#include "kavren/verify.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <map>

#include "records/findings.h"
#include "support/error_case.h"

namespace kavren::test {
namespace {

Report run(const Scenario& s, Mode mode, bool trajectories = false) {
  Options options;
  options.mode = mode;
  options.workers = 2;
  options.trajectories = trajectories;
  // The demo's catalogue is read once.
  static const Catalogue demo = Catalogue::from_text(demo_scenario().catalogue);
  if (s.catalogue == demo_scenario().catalogue) return verify(demo, s.result_text(), options);
  return verify(Catalogue::from_text(s.catalogue), s.result_text(), options);
}

// The single-fault cases of the error table that edit one ship's lines in place: the
// catalogue, the other lines and the file's length stay as the demo has them.
struct Fault {
  ErrorCase c;
  Finding alone;  // what first mode finds with this fault alone
};

std::vector<Fault> ship_local_faults() {
  const Scenario& demo = demo_scenario();
  std::vector<Fault> faults;
  std::vector<ErrorCase> cases = event_error_cases();
  for (ErrorCase& c : physics_error_cases()) cases.push_back(std::move(c));
  for (ErrorCase& c : cases) {
    Scenario s = demo;
    c.make(s);
    if (s.catalogue != demo.catalogue || s.lines.size() != demo.lines.size() || s.prepare ||
        !s.args.empty() || !s.result_suffix.empty()) {
      continue;
    }
    const Report report = run(s, Mode::first);
    if (report.findings.size() != 1 || report.findings[0].ship == 0) continue;
    faults.push_back(Fault{std::move(c), report.findings[0]});
  }
  return faults;
}

TEST(AllMode, FindsEveryIndependentFaultWithItsOwnMargin) {
  const std::vector<Fault> faults = ship_local_faults();
  ASSERT_GE(faults.size(), 10u);
  // Combinations of up to four faults in different ships, each fault used once.
  std::vector<bool> used(faults.size(), false);
  int combinations = 0;
  for (std::size_t seed = 0; seed < faults.size(); ++seed) {
    if (used[seed]) continue;
    std::vector<std::size_t> chosen = {seed};
    std::map<int, bool> ships = {{faults[seed].alone.ship, true}};
    for (std::size_t k = seed + 1; k < faults.size() && chosen.size() < 4; ++k) {
      if (used[k] || ships.count(faults[k].alone.ship)) continue;
      chosen.push_back(k);
      ships[faults[k].alone.ship] = true;
    }
    if (chosen.size() < 2) continue;
    Scenario s = demo_scenario();
    for (std::size_t k : chosen) {
      used[k] = true;
      faults[k].c.make(s);
    }
    const Report report = run(s, Mode::all);
    EXPECT_FALSE(report.accepted);
    for (std::size_t k : chosen) {
      const Finding& alone = faults[k].alone;
      bool found = false;
      for (const Finding& f : report.findings) {
        if (f.code != alone.code || f.lines != alone.lines || f.ship != alone.ship) continue;
        found = true;
        EXPECT_EQ(f.message, alone.message);
        if (!std::isnan(alone.margin)) {
          EXPECT_DOUBLE_EQ(f.margin, alone.margin) << f.code;
        }
      }
      EXPECT_TRUE(found) << faults[k].c.name << " among " << chosen.size() << " faults";
    }
    ++combinations;
  }
  EXPECT_GE(combinations, 4);
}

// An epoch outside the mission names the ship whose line it is.
TEST(AllMode, EpochFindingsNameTheirShip) {
  Scenario s = demo_scenario();
  s.lines[2] = with_token(s.lines[2], 2, "0");
  s.lines.back() = with_token(s.lines.back(), 2, "1e9");
  const Report report = run(s, Mode::all);
  std::map<std::string, int> ships;
  for (const Finding& f : report.findings) {
    if (f.code == "Error001" || f.code == "Error002") ships[f.code] = f.ship;
  }
  EXPECT_EQ(ships["Error001"], 1);
  EXPECT_EQ(ships["Error002"], report.summary.ships);
}

// A structural fault of the file ends even a report of every finding: nothing read
// ahead of it (ships, their events and arcs) stands.
TEST(AllMode, StructuralFaultEndsTheReport) {
  Scenario s = demo_scenario();
  s.lines[s.lines.size() / 2] = "";
  const Report report = run(s, Mode::all);
  ASSERT_EQ(report.findings.size(), 1u);
  EXPECT_EQ(report.findings[0].code, "ErrorA09");
  EXPECT_TRUE(report.summary.per_ship.empty());
}

// The ships are checked each in a collector of its own, then appended: a rule that
// passes on NaN in two ships is named once, at the first, as by one collector.
TEST(AllMode, RulePassingOnNaNIsNamedOnce) {
  Scenario s = demo_scenario();
  const int second_launch = find_line(s.lines, 0, 10, 2);
  for (int line : {0, 1, second_launch, second_launch + 1}) {
    s.lines[static_cast<std::size_t>(line)] =
        with_token(s.lines[static_cast<std::size_t>(line)], 9, "nan");
  }
  const Report report = run(s, Mode::all);
  std::map<std::string, int> named;
  for (const Warning& w : report.warnings) {
    if (w.kind == "nan-passes") ++named[w.rule];
  }
  ASSERT_GT(named.count("launch.mass"), 0u);
  for (const auto& [rule, times] : named) EXPECT_EQ(times, 1) << rule;
}

// An epoch that goes back falls short of its predecessor by the time it goes back: the
// table's case sets a rendezvous one day before the one it follows.
// A slow Earth flyby closes a group of the ship's ledger whatever its mass change: the
// demo has such flybys without a mass change after the ships' last real drops, and here
// every real drop is also made one without. The summary must call each a drop, and its
// last drop must be the last event it lists as one.
TEST(Summary, AnEarthDropIsWhatTheLedgerCountsAsOne) {
  Scenario s = demo_scenario();
  std::vector<int> zeroed;  // 1-based lines of the drops made without a mass change
  for (std::size_t k = 1; k < s.lines.size(); ++k) {
    const std::vector<std::string> a = tokens_of(s.lines[k - 1]), b = tokens_of(s.lines[k]);
    if (a.size() == 10 && b.size() == 10 && a[1] == "-3" && b[1] == "-3" && a[0] == b[0] &&
        token(s.lines[k], 9) < token(s.lines[k - 1], 9)) {
      s.lines[k] = with_token(s.lines[k], 9, a[9]);
      zeroed.push_back(static_cast<int>(k));
    }
  }
  ASSERT_FALSE(zeroed.empty());
  const Report report = run(s, Mode::all);
  std::size_t listed = 0;
  for (const ShipSummary& ship : report.summary.per_ship) {
    double last_listed = kNotANumber;
    for (const EventMark& e : ship.events) {
      if (e.kind != "drop") continue;
      last_listed = e.epoch;
      listed += std::count(zeroed.begin(), zeroed.end(), e.line);
    }
    if (std::isnan(last_listed)) {
      EXPECT_TRUE(std::isnan(ship.last_drop_epoch)) << "ship " << ship.ship;
    } else {
      EXPECT_EQ(ship.last_drop_epoch, last_listed) << "ship " << ship.ship;
    }
  }
  EXPECT_EQ(listed, zeroed.size());
}

TEST(Margins, AnEpochGoingBackByADay) {
  Scenario s = demo_scenario();
  case_named("Error005_RendezvousBeforePreviousOne").make(s);
  const Report report = run(s, Mode::first);
  ASSERT_EQ(report.findings.size(), 1u);
  EXPECT_EQ(report.findings[0].code, "Error005");
  EXPECT_NEAR(report.findings[0].margin, -1.0, 1e-9);
}

// A limit met within a thousandth of its size is named with the line it is met on.
TEST(Warnings, NearLimitNamesItsLine) {
  for (long long line : {0LL, 1LL, 7LL}) {
    Findings found(false);
    found.evaluate(Rule::thrust_magnitude, true, 0.59999, 0.6, line, 1);
    const std::vector<Warning> warnings = found.warnings();
    ASSERT_EQ(warnings.size(), 1u);
    EXPECT_EQ(warnings[0].kind, "near-limit");
    EXPECT_EQ(warnings[0].lines,
              line > 0 ? std::vector<long long>{line} : std::vector<long long>{});
  }
}

TEST(Constraints, ValidDemoPassesEveryRuleWithRoomToSpare) {
  const Report report = run(demo_scenario(), Mode::all, true);
  ASSERT_TRUE(report.accepted);
  EXPECT_TRUE(report.findings.empty());
  EXPECT_GE(report.constraints.size(), 25u);
  for (const Constraint& c : report.constraints) {
    EXPECT_TRUE(c.passed) << c.rule;
    EXPECT_GT(c.evaluations, 0u) << c.rule;
    // Counts and steps of a full day may meet their limit exactly.
    const bool exact = c.unit == "rendezvous" || c.unit == "miners" || c.unit == "ships" ||
                       c.rule == "thrust.step_order" || c.rule == "thrust.step_length";
    if (exact) {
      EXPECT_GE(c.margin, 0.0) << c.rule;
    } else {
      EXPECT_GT(c.margin, 0.0) << c.rule << " worst " << c.worst << " limit " << c.limit;
    }
  }
  // One trajectory per ship, from the launch to the last event, in time order.
  ASSERT_EQ(report.trajectories.size(), static_cast<std::size_t>(report.summary.ships));
  for (std::size_t s = 0; s < report.trajectories.size(); ++s) {
    const std::vector<TrajectoryPoint>& points = report.trajectories[s].points;
    ASSERT_GT(points.size(), 10u);
    const EventMark& launch = report.summary.per_ship[s].events.front();
    EXPECT_NEAR(points.front().epoch, launch.epoch, 1e-8);
    for (std::size_t k = 1; k < points.size(); ++k) {
      ASSERT_GE(points[k].epoch, points[k - 1].epoch - 1e-9) << "ship " << s + 1;
      ASSERT_LE(points[k].thrust, 0.6 + 1e-12);
    }
  }
}

}  // namespace
}  // namespace kavren::test
