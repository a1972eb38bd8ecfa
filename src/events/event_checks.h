// The rules at launch, flyby and rendezvous events, on a findings collector. Each
// function checks its rules in the order a run meets them and returns false when the
// collector says to stop. Line numbers in findings are 1-based.
#pragma once

#include "astro/ephemeris.h"
#include "records/findings.h"
#include "records/records.h"

namespace kavren {

struct EventContext {
  Findings& findings;
  AsteroidRows asteroids;
  int ship;  // 1-based ordinal
};

// Launch: the two lines one instant, one place, one mass (Error501-503); the initial
// mass (504); the excess speed (505); both lines on the Earth, the first moving with it
// (506, 507).
bool launch_pair(const LaunchClass& launch, EventContext& c);
bool launch_mass(const LaunchClass& launch, EventContext& c);
bool launch_speed(const LaunchClass& launch, EventContext& c);
bool launch_at_earth(const LaunchClass& launch, EventContext& c);

// Flyby: the two lines (601-603, mass free at the Earth); both at the planet (604);
// excess speed kept (607) and the turn within what the planet allows (605). A passing
// pass records its incoming excess speed.
bool flyby_pair(const FlybyClass& flyby, EventContext& c);
bool flyby_at_planet(const FlybyClass& flyby, EventContext& c);
bool flyby_pass(FlybyClass& flyby, EventContext& c);

// Rendezvous: the two lines one instant, one place, one velocity (701-703); both on the
// asteroid (704, 705).
bool visit_pair(const VisitClass& visit, EventContext& c);
bool visit_at_asteroid(const VisitClass& visit, EventContext& c);

// Every event of the ship: launch, then each flyby, then each rendezvous.
bool check_ship_events(ShipClass& ship, EventContext& c);

}  // namespace kavren
