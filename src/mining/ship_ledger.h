// A ship's own resource bookkeeping: what it collects is dropped at the Earth, it uses
// a limited number of miners, and it ends no lighter than its dry mass.
#pragma once

#include <optional>

#include "records/findings.h"
#include "records/records.h"

namespace kavren {

// What a ship's records say of its mining: the miners it left behind, the resources it
// took on at rendezvous (VisitClass::leaves_miner tells the two apart; the count saturates
// instead of overflowing) and the epoch of its last drop at the Earth, the last record of
// the last non-empty group of its ledger (none without a drop). The checks, the summary
// and the report all read these.
struct MiningTally {
  int miners = 0;
  double collected = 0.0;
  std::optional<double> last_drop_epoch;
};
MiningTally tally_mining(const ShipClass& ship);

// Error801: every drop group balances, within the tolerance, cumulatively. Sets the
// ship's mass of resources delivered when it passes.
bool check_resource_balance(ShipClass& ship, Findings& findings);
// Error807: counts the miners left behind and the resources collected.
bool check_miner_count(ShipClass& ship, Findings& findings);
// Error901: the final mass less the resources still on board.
bool check_dry_mass(const ShipClass& ship, Findings& findings);

}  // namespace kavren
