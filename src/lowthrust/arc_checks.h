// Layout checks of the burning-arc lines and the per-arc verification loop.
#pragma once

#include <vector>

#include "records/records.h"

// Every arc of every ship, in order: data check, then integration.
bool CheckBuringArc(const std::vector<ShipClass>& ships);
bool CheckBuringArc(const ShipClass& ship);
// Walks the arc's lines; lists the opening (starts) and closing (ends) zero-thrust line of
// every thrust phase. Ends the run (status 0) at the first layout error.
bool Test_LowThrustData(BurningArc& arc, int& count, std::vector<int>& starts,
                        std::vector<int>& ends);
