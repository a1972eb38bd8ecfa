// Ship-count limit and the score file.
#pragma once

#include <vector>

#include "mining/ledger.h"

// Sums the collected masses into total and enforces the ship-count limit (Error301,
// status 3).
bool Test_MotherShipNum(int num_ships, const std::vector<StoreDmStruct>& store, double& total);
// Writes "./ScoreData.txt".
bool Output_Solution(const std::vector<StoreDmStruct>& store);
