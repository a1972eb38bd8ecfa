#include "mining/ship_ledger.h"

#include <climits>
#include <cmath>
#include <string>

#include "records/announce.h"
#include "records/limits.h"

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

bool check_miner_count(ShipClass& ship, Findings& findings) {
  ship.num_miners = 0;
  ship.mass_collected = 0.0;
  for (const VisitClass& visit : ship.visits) {
    if (visit.mass_change < 0.0) {
      // A miner is left behind. The count saturates instead of overflowing; anything
      // past the limit fails alike.
      if (ship.num_miners < INT_MAX) ++ship.num_miners;
    } else {
      ship.mass_collected += visit.mass_change;
    }
  }
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

// The last drop at the Earth closes the ship's last group. Groups without entries hold no
// drop and are passed over; without any entry the mission's start stays.
void ShipClass::calculate_time_of_LRE() {
  for (auto group = dm_groups.rbegin(); group != dm_groups.rend(); ++group) {
    if (!group->empty()) {
      time_of_LRE = group->back().epoch;
      return;
    }
  }
}

bool ShipClass::check_dm() {
  kavren::Findings findings(true);
  kavren::check_resource_balance(*this, findings);
  return kavren::announce(findings);
}

bool ShipClass::calculate_check_num_miners() {
  kavren::Findings findings(true);
  kavren::check_miner_count(*this, findings);
  return kavren::announce(findings);
}

bool ShipClass::check_final_mass() const {
  kavren::Findings findings(true);
  kavren::check_dry_mass(*this, findings);
  return kavren::announce(findings);
}
