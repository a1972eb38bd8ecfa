// The limit on the number of ships and the score file.
#pragma once

#include <string>
#include <vector>

#include "mining/ledger.h"

namespace kavren {

// Test_MotherShipNum on a findings collector.
bool check_ship_count(int num_ships, const std::vector<StoreDmStruct>& store, double& total,
                      Findings& findings);
// The bytes of the score file: the number of mined asteroids, then each one's ID and
// collected mass.
std::string score_file_text(const std::vector<StoreDmStruct>& store);

}  // namespace kavren
