// The per-asteroid mining ledger: every rendezvous of every ship gathered by asteroid,
// each asteroid mined by at most one deploy-then-collect pair.
#pragma once

#include <vector>

#include "records/findings.h"
#include "records/records.h"

struct DmStructAsteroid {
  int num_rendezvous = 0;
  int line1 = 0;
  double time_of_LRE1 = 0.0;
  double epoch1 = 0.0;
  double mass_change1 = 0.0;
  int line2 = 0;
  double time_of_LRE2 = 0.0;
  double epoch2 = 0.0;
  double mass_change2 = 0.0;
};

struct StoreDmStruct {
  int asteroid_id = 0;
  double mass = 0.0;
};

namespace kavren {

// CheckVisitDm on a findings collector; false when the collector says to stop.
bool check_mining_ledger(const std::vector<ShipClass>& ships, int num_ships,
                         std::vector<DmStructAsteroid>& asteroid_table,
                         std::vector<StoreDmStruct>& store, Findings& findings);
// check_DmStructAsteroid on a findings collector: 1, -1, or 0 when a rule failed.
int check_mining_pair(DmStructAsteroid& record, Findings& findings);

}  // namespace kavren
