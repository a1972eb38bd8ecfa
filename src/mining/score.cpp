#include "mining/score.h"

// Placeholder until the score stage lands.
bool Test_MotherShipNum(int, const std::vector<StoreDmStruct>&, double& total) {
  total = 0.0;
  return true;
}
bool Output_Solution(const std::vector<StoreDmStruct>&) { return true; }
