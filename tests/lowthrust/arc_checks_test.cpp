// Burning arcs: the layout walk of their lines, the integration through coasts and thrust
// phases, and the comparison with the state written at their end.
#include "lowthrust/arc_stage.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include "support/capture.h"
#include "kepler_reference.h"
#include "astro/constants.h"
#include "lowthrust/arc_data.h"
#include "lowthrust/arc_integration.h"
#include "lowthrust/dynamics.h"

namespace {

using kavren::test::capture;
using kavren::test::Outcome;

struct Row {
  double epoch;
  double thrust;  // N, along y
};

constexpr double T = 65000.0;

BurningArc arc_of(int first_line, const std::vector<Row>& rows) {
  BurningArc arc;
  arc.first_line = first_line;
  arc.last_line = first_line + static_cast<int>(rows.size()) - 1;
  for (const Row& row : rows) {
    arc.values.push_back(row.epoch);
    arc.lines.push_back({0.0, row.thrust, 0.0});
  }
  return arc;
}

struct Walk {
  Outcome outcome;
  int count = -1;
  std::vector<int> starts, ends;
};

Walk walk(BurningArc arc) {
  Walk w;
  w.starts = {99};  // stale lists from an earlier arc are cleared
  w.ends = {99};
  w.outcome = capture([&] { Test_LowThrustData(arc, w.count, w.starts, w.ends); });
  return w;
}

void expect_ends(const Walk& w, const std::string& line) {
  EXPECT_TRUE(w.outcome.ended);
  EXPECT_EQ(w.outcome.status, 0);
  EXPECT_EQ(w.outcome.out, line + "\n");
}

// --- Layout walk -------------------------------------------------------------------------

TEST(ThrustPhaseLayout, PhaseWithShortFinalStepIsAccepted) {
  const Walk w = walk(arc_of(10, {{T, 0}, {T, 0.3}, {T + 1, 0.3}, {T + 2, 0.3}, {T + 2.5, 0.3},
                                  {T + 2.5, 0}}));
  EXPECT_FALSE(w.outcome.ended);
  EXPECT_EQ(w.outcome.out, "");
  EXPECT_EQ(w.count, 1);
  EXPECT_EQ(w.starts, std::vector<int>({10}));
  EXPECT_EQ(w.ends, std::vector<int>({15}));
}

TEST(ThrustPhaseLayout, ConsecutivePhasesAreListedInOrder) {
  const Walk w = walk(arc_of(10, {{T, 0}, {T, 0.3}, {T + 1, 0.3}, {T + 1, 0}, {T + 4, 0},
                                  {T + 4, 0.2}, {T + 4, 0}}));
  EXPECT_FALSE(w.outcome.ended);
  EXPECT_EQ(w.count, 2);
  EXPECT_EQ(w.starts, std::vector<int>({10, 14}));
  EXPECT_EQ(w.ends, std::vector<int>({13, 16}));
}

TEST(ThrustPhaseLayout, ArcsWithoutPhases) {
  BurningArc coast;  // adjacent events: no lines at all
  Walk w = walk(coast);
  EXPECT_FALSE(w.outcome.ended);
  EXPECT_EQ(w.count, 0);
  EXPECT_TRUE(w.starts.empty());
  EXPECT_TRUE(w.ends.empty());
  w = walk(arc_of(10, {{T, 0.3}}));  // one line: nothing to pair
  EXPECT_FALSE(w.outcome.ended);
  EXPECT_EQ(w.count, 0);
}

TEST(ThrustPhaseLayout, ArcHoldingFewerLinesThanItsSpanWalksTheStoredOnes) {
  BurningArc arc = arc_of(10, {{T, 0}, {T, 0.3}, {T + 1, 0.3}, {T + 1, 0}});
  arc.last_line = 30;
  const Walk w = walk(arc);
  EXPECT_FALSE(w.outcome.ended);
  EXPECT_EQ(w.ends, std::vector<int>({13}));
}

TEST(ThrustPhaseLayout, ThrustAtTheLimitPassesAndAboveItStops) {
  Walk w = walk(arc_of(10, {{T, 0}, {T, 0.6}, {T + 1, 0.600000005}, {T + 1, 0}}));
  EXPECT_FALSE(w.outcome.ended);
  w = walk(arc_of(10, {{T, 0}, {T, 0.3}, {T + 1, 0.6000001}, {T + 2, 0.3}, {T + 2, 0}}));
  expect_ends(w, "Error401. Thrust Magnitude Error on the line 13: The thrust magnitude is 0.6 "
                 "N, greater than the maximum 0.6N.");
  w = walk(arc_of(10, {{T, 0.7}, {T, 0.3}, {T + 1, 0.3}, {T + 1, 0}}));
  expect_ends(w, "Error401. Thrust Magnitude Error on the line 11: The thrust magnitude is 0.7 "
                 "N, greater than the maximum 0.6N.");
}

TEST(ThrustPhaseLayout, PhaseMustOpenWithTwoZeroLinesAtOneEpoch) {
  expect_ends(walk(arc_of(10, {{T, 0}, {T + 0.5, 0.3}, {T + 1.5, 0.3}, {T + 1.5, 0}})),
              "ErrorA03. File Format Error on the line 11: Missing the first line of the "
              "burning arc.");
  expect_ends(walk(arc_of(10, {{T, 0.1}, {T, 0.3}, {T + 1, 0.3}, {T + 1, 0}})),
              "ErrorA04. File Format Error on the line 11: The thrust magnitude of the first "
              "line of the burning arc is not 0.");
}

TEST(ThrustPhaseLayout, SingleLineAfterAClosedPhaseCannotOpenOne) {
  expect_ends(walk(arc_of(10, {{T, 0}, {T, 0.3}, {T + 1, 0.3}, {T + 1, 0}, {T + 3, 0}})),
              "ErrorA03. File Format Error on the line 15: Missing the first line of the "
              "burning arc.");
}

TEST(ThrustPhaseLayout, PhaseMustCloseWithAZeroLineAtTheSameEpoch) {
  // A short step must be the last: the next pair has to close the phase.
  expect_ends(walk(arc_of(10, {{T, 0}, {T, 0.3}, {T + 0.5, 0.3}, {T + 1.5, 0.3},
                               {T + 1.5, 0}})),
              "ErrorA05. File Format Error on the line 13: Missing the last line of the "
              "burning arc.");
  // The arc ends inside a phase.
  expect_ends(walk(arc_of(10, {{T, 0}, {T, 0.3}, {T + 1, 0.3}, {T + 2, 0.3}})),
              "ErrorA05. File Format Error on the line 14: Missing the last line of the "
              "burning arc.");
  expect_ends(walk(arc_of(10, {{T, 0}, {T, 0.3}, {T + 0.5, 0.3}, {T + 0.5, 0.3},
                               {T + 0.5, 0}})),
              "ErrorA06. File Format Error on the line 13: The thrust magnitude of the last "
              "line of the burning arc is not 0.");
}

TEST(ThrustPhaseLayout, ThrustLinesMustBeOneDayApart) {
  expect_ends(walk(arc_of(10, {{T, 0}, {T, 0.3}, {T - 0.5, 0.3}, {T - 0.5, 0}})),
              "ErrorA07. Thrust Epoch Error between line 12 and line 13: The time interval is "
              "less than 0.");
  expect_ends(walk(arc_of(10, {{T, 0}, {T, 0.3}, {T + 1.5, 0.3}, {T + 1.5, 0}})),
              "ErrorA08. Thrust Epoch Error between line 12 and line 13: The time interval is "
              "greater than 1 day.");
}

// --- Propagation -----------------------------------------------------------------------------

StateStruct state(int line, double epoch, const double* rv_km, double mass) {
  StateStruct s;
  s.line_index = line;
  s.epoch = epoch;
  for (int i = 0; i < 3; ++i) {
    s.r[i] = rv_km[i];
    s.v[i] = rv_km[3 + i];
  }
  s.mass = mass;
  return s;
}

// A 100-day coast on an eccentric orbit, its end written from Kepler's solution.
BurningArc kepler_coast() {
  double y[7];
  kavren::test::ellipse_state(y);
  double end[6];
  kavren::test::kepler(y, 100.0 * 86400.0 / kavren::kTU, end);
  double start_km[6], end_km[6];
  for (int i = 0; i < 3; ++i) {
    start_km[i] = y[i] * kavren::kLU;
    start_km[3 + i] = y[3 + i] * kavren::kVU;
    end_km[i] = end[i] * kavren::kLU;
    end_km[3 + i] = end[3 + i] * kavren::kVU;
  }
  BurningArc arc;
  arc.start_state = state(7, T, start_km, 900.0);
  arc.end_state = state(8, T + 100.0, end_km, 900.0);
  arc.start_epoch = T;
  arc.end_epoch = T + 100.0;
  return arc;
}

Outcome propagate(const BurningArc& arc) {
  int count = 0;
  std::vector<int> starts, ends;
  BurningArc copy = arc;
  return capture([&] {
    Test_LowThrustData(copy, count, starts, ends);
    Test_LowThrust_RKF78(copy, count, starts, ends);
  });
}

TEST(ArcPropagation, CoastMatchingKeplerPasses) {
  const Outcome o = propagate(kepler_coast());
  EXPECT_FALSE(o.ended);
  EXPECT_EQ(o.out, "");
}

const char* const kFromEvent =
    " error between the integral state from the previous event and the state shown in the "
    "file is ";

TEST(ArcPropagation, EndStateOffInPositionVelocityOrMass) {
  BurningArc arc = kepler_coast();
  arc.end_state.r[0] += 1500.0;
  arc.end_state.v[1] += 0.002;
  arc.end_state.mass += 0.002;
  Outcome o = propagate(arc);  // position first: only Error201
  EXPECT_EQ(o.status, 1);
  EXPECT_EQ(o.out, std::string("Error201. Position Error on the line 9: The position") +
                       kFromEvent + "1500 km, greater than the constraint 1000 km.\n");
  arc.end_state.r[0] -= 1500.0;
  o = propagate(arc);
  EXPECT_EQ(o.status, 1);
  EXPECT_EQ(o.out, std::string("Error202. Velocity Error on the line 9: The velocity") +
                       kFromEvent + "2 m/s, greater than the constraint 1 m/s.\n");
  arc.end_state.v[1] -= 0.002;
  o = propagate(arc);
  EXPECT_EQ(o.status, 1);
  EXPECT_EQ(o.out, std::string("Error203. Mass Error on the line 9: The mass") + kFromEvent +
                       "0.002 kg, greater than the constraint 0.001 kg.\n");
}

TEST(ArcPropagation, ComparisonLimitsAreInclusive) {
  const double reached[7] = {0, 0, 0, 0, 0, 0, 0};
  const double at_limits[7] = {1000.0, 0, 0, 0, 0.001, 0, 0.001};
  EXPECT_FALSE(capture([&] { Judge_rvmf(reached, at_limits, 4); }).ended);
  const double beyond[7] = {0, 0, 1000.5, 0, 0, 0, 0};
  const Outcome o = capture([&] { Judge_rvmf(reached, beyond, 4); });
  EXPECT_EQ(o.out, std::string("Error201. Position Error on the line 5: The position") +
                       kFromEvent + "1000.5 km, greater than the constraint 1000 km.\n");
  EXPECT_EQ(V_norm({3.0, 4.0, 12.0}), 13.0);
  EXPECT_EQ(V_norm({}), 0.0);
}

// A ship a million AU from the Sun (gravity below 1e-17 km/s^2) firing 0.5 N along y for
// ten days between two coasts: Tsiolkovsky's solution, independent of the integrator.
constexpr double kFar = 1e6 * 149597870.691;  // km
constexpr double kThrust = 0.5;                // N
constexpr double kExhaust = 4000.0 * 0.00980665;  // km/s
constexpr double kMass = 1000.0;

struct Rocket {
  double mass, speed, distance;
};

Rocket tsiolkovsky(double burn_days, double coast_days_after) {
  const double mdot = kThrust * 0.001 / kExhaust;  // kg/s
  const double burn = burn_days * 86400.0;
  const double m1 = kMass - mdot * burn;
  const double dv = kExhaust * std::log(kMass / m1);
  const double during = kExhaust * (burn - m1 / mdot * std::log(kMass / m1));
  return {m1, dv, during + dv * coast_days_after * 86400.0};
}

// Start at T, zero line at T+2, thrust lines T+2..T+12, zero line at T+12, end at T+15.
BurningArc rocket_arc(double start_epoch, double end_epoch) {
  std::vector<Row> rows = {{T + 2, 0.0}};
  for (int k = 0; k <= 10; ++k) rows.push_back({T + 2 + k, kThrust});
  rows.push_back({T + 12, 0.0});
  BurningArc arc = arc_of(20, rows);
  const double at_rest[6] = {kFar, 0, 0, 0, 0, 0};
  const Rocket end = tsiolkovsky(10.0, end_epoch - (T + 12));
  const double moved[6] = {kFar, end.distance, 0, 0, end.speed, 0};
  arc.start_state = state(19, start_epoch, at_rest, kMass);
  arc.end_state = state(33, end_epoch, moved, end.mass);
  arc.start_epoch = start_epoch;
  arc.end_epoch = end_epoch;
  return arc;
}

TEST(ArcPropagation, ConstantThrustFollowsTheRocketEquation) {
  const BurningArc arc = rocket_arc(T, T + 15);
  int count = 0;
  std::vector<int> starts, ends;
  BurningArc copy = arc;
  Test_LowThrustData(copy, count, starts, ends);
  ASSERT_EQ(count, 1);
  double reached[7];
  kavren::integrate_arc(arc, count, starts, ends, reached);
  EXPECT_NEAR(reached[6], arc.end_state.mass, 1e-9);
  EXPECT_NEAR(reached[4], arc.end_state.v[1], 1e-9);
  EXPECT_NEAR(reached[1], arc.end_state.r[1], 1e-3);
  EXPECT_NEAR(reached[0], kFar, 0.1);
  ShipClass ship;
  ship.burning_arcs = {arc};
  EXPECT_EQ(capture([&] { CheckBuringArc(std::vector<ShipClass>{ship}); }).out, "");
}

TEST(ArcPropagation, PhaseOpeningAtTheArcStartNeedsNoCoast) {
  const BurningArc arc = rocket_arc(T + 2, T + 12);
  EXPECT_EQ(propagate(arc).out, "");
}

TEST(ArcPropagation, PhaseBeforeTheArcStart) {
  const double tu_in_days = kavren::kTU / 86400.0;
  // 1e-9 TU early is within the ordering tolerance: no coast, no message.
  BurningArc arc = rocket_arc(T + 2 + 1e-9 * tu_in_days, T + 15);
  Outcome o = propagate(arc);
  EXPECT_FALSE(o.ended);
  arc = rocket_arc(T + 2 + 1e-7 * tu_in_days, T + 15);
  o = propagate(arc);
  EXPECT_EQ(o.status, 0);
  EXPECT_EQ(o.out, "Error003. Event Time Error on the line 21: The start epoch of the burning "
                   "arc is 65002(MJD), earlier than the end epoch of the previous event (or "
                   "burning arc).\n");
}

TEST(ArcPropagation, PhaseEndingAfterTheArcEnd) {
  const Outcome o = propagate(rocket_arc(T, T + 11.5));
  EXPECT_TRUE(o.ended);
  EXPECT_EQ(o.status, 0);
  EXPECT_EQ(o.out, "Error004. Event Time Error on the line 33: The end epoch of the burning arc "
                   "is 65011.5(MJD), later than the start epoch of the subsequent event.\n");
}

TEST(ArcPropagation, ShipsAreCheckedInOrderUntilTheFirstFailure) {
  ShipClass good;
  good.burning_arcs = {kepler_coast(), rocket_arc(T, T + 15)};
  ShipClass bad;
  bad.burning_arcs = {arc_of(40, {{T, 0.1}, {T, 0.3}, {T + 1, 0.3}, {T + 1, 0}})};
  ShipClass unseen;
  unseen.burning_arcs = {arc_of(50, {{T, 0.9}, {T, 0.3}, {T + 1, 0.3}, {T + 1, 0}})};
  const Outcome o = capture([&] { CheckBuringArc(std::vector<ShipClass>{good, bad, unseen}); });
  EXPECT_EQ(o.status, 0);
  EXPECT_EQ(o.out, "ErrorA04. File Format Error on the line 41: The thrust magnitude of the "
                   "first line of the burning arc is not 0.\n");
}

// --- Arcs on worker threads ---------------------------------------------------------------

// Ships of good arcs with failures planted at the given arc positions: a layout error
// (status 0) at even positions, an end state 5000 km off (status 1) at odd ones.
std::vector<ShipClass> fleet(int arcs, const std::vector<int>& failing) {
  std::vector<ShipClass> ships(4);
  for (int k = 0; k < arcs; ++k) {
    BurningArc arc = k % 3 == 0 ? rocket_arc(T, T + 15) : kepler_coast();
    for (int f : failing) {
      if (f != k) continue;
      if (k % 2 == 0) {
        arc = arc_of(100 + k, {{T, 0.2}, {T, 0.3}, {T + 1, 0.3}, {T + 1, 0}});
      } else {
        arc.end_state.r[1] += 5000.0;
        arc.end_state.line_index = 200 + k;
      }
    }
    ships[static_cast<std::size_t>(k % 4)].burning_arcs.push_back(arc);
  }
  return ships;
}

// The per-ship form walks the arcs one after the other: the reference verdict.
Outcome sequential(const std::vector<ShipClass>& ships) {
  return capture([&] {
    for (const ShipClass& ship : ships) CheckBuringArc(ship);
  });
}

// The stage on n workers, as a run that stops at the first failure prints it.
Outcome on_workers(const std::vector<ShipClass>& ships, int workers, std::uint64_t* evaluations) {
  kavren::Findings findings(true);
  kavren::ArcStageOptions options;
  options.workers = workers;
  kavren::ArcStageResult result;
  kavren::check_arcs(ships, findings, options, result);
  if (evaluations != nullptr) *evaluations = result.evaluations;
  Outcome o;
  if (findings.any()) {
    o.out = findings.findings().front().message;
    o.ended = true;
    o.status = findings.findings().front().exit_status;
  }
  return o;
}

TEST(ArcWorkers, FirstFailureInFileOrderWhateverTheWorkerCount) {
  const std::vector<std::vector<int>> plans = {
      {}, {0}, {23}, {5, 2}, {22, 3}, {7, 8, 21}, {1, 2, 3, 4, 5}, {19, 11}};
  for (const auto& plan : plans) {
    const std::vector<ShipClass> ships = fleet(24, plan);
    const Outcome expected = sequential(ships);
    for (int workers : {1, 2, 4, 7}) {
      const Outcome got = on_workers(ships, workers, nullptr);
      EXPECT_EQ(got.out, expected.out) << workers << " workers";
      EXPECT_EQ(got.ended, expected.ended);
      EXPECT_EQ(got.status, expected.status);
    }
  }
}

TEST(ArcWorkers, EveryArcIsIntegratedOnceAcrossWorkers) {
  const std::vector<ShipClass> ships = fleet(16, {});
  std::uint64_t one = 0, three = 0;
  on_workers(ships, 1, &one);
  on_workers(ships, 3, &three);
  EXPECT_GT(one, 0u);
  EXPECT_EQ(three, one);
}

}  // namespace
