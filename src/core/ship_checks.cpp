#include "core/ship_checks.h"

#include "mining/ship_ledger.h"

namespace kavren {

bool check_ship(ShipClass& ship, EventContext& context) {
  if (!check_ship_events(ship, context)) return false;
  Findings& f = context.findings;
  if (!check_resource_balance(ship, f)) return false;
  ship.calculate_time_of_LRE();
  return check_miner_count(ship, f) && check_dry_mass(ship, f);
}

}  // namespace kavren
