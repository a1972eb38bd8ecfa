// The rules of one mining ship: its events first, then its resource bookkeeping, its
// miner count and its final mass.
#include <climits>
#include <cmath>
#include <iostream>

#include "events/event_messages.h"
#include "records/records.h"

namespace {

constexpr double kBalanceTolerance = 0.001;  // kg, cumulative over the ship's drop groups
constexpr int kMaxMinersPerShip = 20;
constexpr double kMinFinalMass = 500.0;  // kg, the dry ship without resources

}  // namespace

bool ShipClass::check_all() {
  if (!launch.check_2lines_trm()) return false;
  if (!launch.check_initialmass()) return false;
  if (!launch.check_vinf()) return false;
  if (!launch.check_rv_ifequal2Earth()) return false;
  // All three checks of one flyby run before the next flyby is looked at.
  for (FlybyClass& flyby : flybys) {
    if (!flyby.check_2lines_trm()) return false;
    if (!flyby.check_r_ifequal2Star()) return false;
    if (!flyby.check_flyby()) return false;
  }
  for (const VisitClass& visit : visits) {
    if (!visit.check_2lines_trv()) return false;
    if (!visit.check_rv_ifequal2asteroid()) return false;
  }
  if (!check_dm()) return false;
  calculate_time_of_LRE();
  if (!calculate_check_num_miners()) return false;
  return check_final_mass();
}

// The running balance is never reset between groups: the tolerance bounds what has been
// collected but not dropped over all groups so far, so residues of successive groups add
// up and may cancel.
bool ShipClass::check_dm() {
  double balance = 0.0;
  double delivered = 0.0;
  for (const std::vector<DmStructShip>& group : dm_groups) {
    // An empty group changes neither the balance (already within the tolerance) nor the
    // delivered total: it holds no drop.
    if (group.empty()) continue;
    for (const DmStructShip& entry : group) balance += entry.mass_change;
    if (std::fabs(balance) > kBalanceTolerance) {
      kavren::events::print_line_error(
          "Error801. Mining Data Error on the line", group.back().line_index,
          ": The mass of resources unloaded on the Earth should be equal to the total mass of "
          "resources carried by the ship.");
      return false;
    }
    delivered -= group.back().mass_change;  // the drop at the Earth is a negative change
  }
  mass_of_resources = delivered;
  return true;
}

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

bool ShipClass::calculate_check_num_miners() {
  num_miners = 0;
  mass_collected = 0.0;
  for (const VisitClass& visit : visits) {
    if (visit.mass_change < 0.0) {
      // A miner is left behind. The count saturates instead of overflowing; anything
      // past the limit fails alike.
      if (num_miners < INT_MAX) ++num_miners;
    } else {
      mass_collected += visit.mass_change;
    }
  }
  if (num_miners > kMaxMinersPerShip) {
    std::cout << "Error807. Mining Data Error: The number of miners used by a single Mining Ship "
                 "exceeds the allowable range. Ship ID:"
              << ship_id << "." << std::endl;
    return false;
  }
  return true;
}

bool ShipClass::check_final_mass() const {
  // The final mass less the resources still on board; a NaN passes.
  const double dry_mass = final_mass - (mass_collected - mass_of_resources);
  if (dry_mass < kMinFinalMass) {
    std::cout
        << "Error901. Mass Error: The final mass of the Minging ship is unreasonable. Ship ID:"
        << ship_id << "." << std::endl;
    return false;
  }
  return true;
}
