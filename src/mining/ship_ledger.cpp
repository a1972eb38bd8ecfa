#include "mining/ship_ledger.h"

#include <climits>
#include <cmath>
#include <string>

#include "kavren/limits.h"

namespace kavren {

// The running balance is never reset between groups: the tolerance bounds what has been
// collected but not dropped over all groups so far, so residues of successive groups add
// up and may cancel.
bool check_resource_balance(ShipClass& ship, Findings& findings) {
  double balance = 0.0;
  double delivered = 0.0;
  bool balanced = true;
  for (const std::vector<DmStructShip>& group : ship.dm_groups) {
    // An empty group changes neither the balance (already within the tolerance) nor the
    // delivered total: it holds no drop.
    if (group.empty()) continue;
    for (const DmStructShip& entry : group) balance += entry.mass_change;
    const double off = std::fabs(balance);
    const long long line = printed_line(group.back().line_index);
    if (!findings.check(Rule::resource_balance, !(off > kMassTolerance), off, kMassTolerance,
                        {line}, ship.ship_id, [&] {
                          return line_message(
                              "Error801. Mining Data Error on the line", line,
                              ": The mass of resources unloaded on the Earth should be equal to "
                              "the total mass of resources carried by the ship.");
                        })) {
      return false;
    }
    balanced = balanced && !(off > kMassTolerance);
    delivered -= group.back().mass_change;  // the drop at the Earth is a negative change
  }
  if (balanced) ship.mass_of_resources = delivered;
  return true;
}

MiningTally tally_mining(const ShipClass& ship) {
  MiningTally tally;
  for (const VisitClass& visit : ship.visits) {
    if (visit.leaves_miner()) {
      if (tally.miners < INT_MAX) ++tally.miners;
    } else {
      tally.collected += visit.mass_change;
    }
  }
  // Groups without entries hold no drop and are passed over.
  for (auto group = ship.dm_groups.rbegin(); group != ship.dm_groups.rend(); ++group) {
    if (!group->empty()) {
      tally.last_drop_epoch = group->back().epoch;
      break;
    }
  }
  return tally;
}

bool check_miner_count(ShipClass& ship, Findings& findings) {
  const MiningTally tally = tally_mining(ship);
  ship.num_miners = tally.miners;
  ship.mass_collected = tally.collected;
  return findings.check(
      Rule::miners_per_ship, !(ship.num_miners > kMaxMinersPerShip), ship.num_miners,
      kMaxMinersPerShip, {}, ship.ship_id, [&] {
        return "Error807. Mining Data Error: The number of miners used by a single Mining Ship "
               "exceeds the allowable range. Ship ID:" +
               std::to_string(ship.ship_id) + ".\n";
      });
}

bool check_dry_mass(const ShipClass& ship, Findings& findings) {
  // A NaN passes.
  const double dry_mass = ship.final_mass - (ship.mass_collected - ship.mass_of_resources);
  return findings.check(
      Rule::final_mass, !(dry_mass < kDryMass), dry_mass, kDryMass, {}, ship.ship_id, [&] {
        return "Error901. Mass Error: The final mass of the Minging ship is unreasonable. Ship "
               "ID:" +
               std::to_string(ship.ship_id) + ".\n";
      });
}

}  // namespace kavren

// Without a drop the mission's start stays.
void ShipClass::calculate_time_of_LRE() {
  if (const auto epoch = kavren::tally_mining(*this).last_drop_epoch) time_of_LRE = *epoch;
}
