#include "events/event_checks.h"

namespace kavren {

bool check_ship_events(ShipClass& ship, EventContext& c) {
  const LaunchClass& launch = ship.launch;
  if (!launch_pair(launch, c) || !launch_mass(launch, c) || !launch_speed(launch, c) ||
      !launch_at_earth(launch, c)) {
    return false;
  }
  // All three checks of one flyby run before the next flyby is looked at.
  for (FlybyClass& flyby : ship.flybys) {
    if (!flyby_pair(flyby, c) || !flyby_at_planet(flyby, c) || !flyby_pass(flyby, c)) return false;
  }
  for (const VisitClass& visit : ship.visits) {
    if (!visit_pair(visit, c) || !visit_at_asteroid(visit, c)) return false;
  }
  return true;
}

}  // namespace kavren
