// Hand-built ships for the mining ledger, and an in-process run that captures what a
// check prints and how it ends the run.
#pragma once

#include <utility>

#include "records/records.h"
#include "records/termination.h"
#include "support/capture.h"

namespace mining_test {

// Runs a check in-process, capturing what it prints and how it ends the run.
using kavren::test::Outcome;
template <class Check>
Outcome run_captured(Check&& check) {
  return kavren::test::capture(std::forward<Check>(check));
}

// A rendezvous with asteroid `id` whose second line is file index `line_after`.
inline VisitClass visit(int id, int line_after, double epoch, double mass_change) {
  VisitClass v;
  v.body_id = id;
  v.state_before.line_index = line_after - 1;
  v.state_before.epoch = epoch;
  v.state_before.mass = 1000.0;
  v.state_after.line_index = line_after;
  v.state_after.epoch = epoch;
  v.state_after.mass = 1000.0 + mass_change;
  v.mass_change = mass_change;
  return v;
}

inline ShipClass ship(int id, double time_of_LRE, std::initializer_list<VisitClass> visits) {
  ShipClass s;
  s.ship_id = id;
  s.time_of_LRE = time_of_LRE;
  s.visits = visits;
  return s;
}

}  // namespace mining_test
