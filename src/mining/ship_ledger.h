// A ship's own resource bookkeeping: what it collects is dropped at the Earth, it uses
// a limited number of miners, and it ends no lighter than its dry mass.
#pragma once

#include "records/findings.h"
#include "records/records.h"

namespace kavren {

// Error801: every drop group balances, within the tolerance, cumulatively. Sets the
// ship's mass of resources delivered when it passes.
bool check_resource_balance(ShipClass& ship, Findings& findings);
// Error807: counts the miners left behind and the resources collected.
bool check_miner_count(ShipClass& ship, Findings& findings);
// Error901: the final mass less the resources still on board.
bool check_dry_mass(const ShipClass& ship, Findings& findings);

}  // namespace kavren
