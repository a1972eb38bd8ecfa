// The rules of one mining ship: its events, then its own resource bookkeeping.
#pragma once

#include "events/event_checks.h"

namespace kavren {

// Launch, flybys, rendezvous; then the resource balance, the last drop's epoch, the
// miner count and the final mass. False when the collector says to stop.
bool check_ship(ShipClass& ship, EventContext& context);

}  // namespace kavren
