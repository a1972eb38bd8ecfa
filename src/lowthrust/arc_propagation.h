// Integrates a burning arc through its coasts and thrust phases and compares the state
// reached with the state written at its end.
#pragma once

#include <vector>

#include "records/records.h"

bool Test_LowThrust_RKF78(const BurningArc& arc, int count, const std::vector<int>& starts,
                          const std::vector<int>& ends);
// reached and expected: x, y, z (km), vx, vy, vz (km/s), m (kg). Ends the run with
// Error201..203 (status 1) beyond 1000 km, 0.001 km/s or 0.001 kg.
bool Judge_rvmf(const double* reached, const double* expected, int line);
double V_norm(const std::vector<double>& v);

namespace kavren {
// The integration of Test_LowThrust_RKF78 without the final comparison: the state
// reached at the arc's end, x, y, z (km), vx, vy, vz (km/s), m (kg). Error003/Error004
// and Error101 end the run as in the check. Scenario builders use it to write end states
// that the check reproduces to the bit.
void integrate_arc(const BurningArc& arc, int count, const std::vector<int>& starts,
                   const std::vector<int>& ends, double* reached);
}  // namespace kavren
