// The burning-arc checks, each ending the run at its first finding.
#include <iostream>

#include "console/announce.h"
#include "console/checks.h"
#include "console/termination.h"
#include "lowthrust/arc_data.h"
#include "lowthrust/arc_integration.h"
#include "lowthrust/arc_stage.h"
#include "lowthrust/dynamics.h"
#include "records/findings.h"

namespace {

[[noreturn]] void error101(const kavren::SunApproach& at) {
  std::cout << kavren::sun_approach_message(at);
  kavren::end_run(kavren::rule_info(kavren::Rule::sun_distance).exit_status);
}

}  // namespace

bool Test_LowThrustData(BurningArc& arc, int& count, std::vector<int>& starts,
                        std::vector<int>& ends) {
  kavren::Findings findings(true);
  kavren::ArcPhases phases;
  kavren::walk_thrust_table(arc, phases, findings, arc.ship_number);
  count = phases.count;
  starts = phases.starts;
  ends = phases.ends;
  return kavren::announce(findings, true);
}

bool Test_LowThrust_RKF78(const BurningArc& arc, int count, const std::vector<int>& starts,
                          const std::vector<int>& ends) {
  kavren::ArcPhases phases;
  phases.count = count;
  phases.starts = starts;
  phases.ends = ends;
  kavren::Findings findings(true);
  kavren::ArcIntegration run;
  run.ship = arc.ship_number;
  kavren::integrate_and_compare(arc, phases, findings, run);
  return kavren::announce(findings, true);
}

bool Judge_rvmf(const double* reached, const double* expected, int line) {
  BurningArc arc;
  arc.end_state.line_index = line;
  for (int i = 0; i < 3; ++i) {
    arc.end_state.r[i] = expected[i];
    arc.end_state.v[i] = expected[3 + i];
  }
  arc.end_state.mass = expected[6];
  kavren::Findings findings(true);
  kavren::compare_end_state(arc, reached, findings, 0);
  return kavren::announce(findings, true);
}

bool CheckBuringArc(const std::vector<ShipClass>& ships) {
  kavren::Findings findings(true);
  kavren::ArcStageResult result;
  kavren::check_arcs(ships, findings, kavren::ArcStageOptions{}, result);
  return kavren::announce(findings, true);
}

bool CheckBuringArc(const ShipClass& ship) {
  return CheckBuringArc(std::vector<ShipClass>{ship});
}

void TwoBodyDy(double t, const double* y, double* dy, const double* para) {
  kavren::CoastModel model;
  model.line = kavren::truncate_to_int(para[0]);
  try {
    model(t, y, dy);
  } catch (const kavren::SunApproach& at) {
    error101(at);
  }
}

void LowThrustDy(double t, const double* y, double* dy, const double* para) {
  kavren::ThrustModel model;
  model.table = kavren::thrust_table_of(para, false);
  model.line = kavren::truncate_to_int(para[0]);
  try {
    model(t, y, dy);
  } catch (const kavren::SunApproach& at) {
    error101(at);
  }
}
