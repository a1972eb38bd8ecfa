// The success summary kavren-check prints, and the per-ship summary of a report.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "kavren/report.h"
#include "mining/ledger.h"
#include "records/findings.h"
#include "records/records.h"

namespace kavren {

// The four lines of a successful check; numbers in the stream's default format.
std::string summary_text(int num_ships, std::size_t num_mined, double total_mass);

// The report of a run from its collector and what its stages left: the verdict
// kavren-check prints (the first finding, or the summary and the score file), the
// findings, constraints, warnings and the summary. Trajectories and statistics are the
// caller's.
void conclude(Findings& findings, const std::vector<ShipClass>& ships, int num_ships,
              const std::vector<StoreDmStruct>& store, double total_mass,
              const std::vector<int>& thrust_phases, Report& report);

Summary summarise(const std::vector<ShipClass>& ships, int num_ships,
                  const std::vector<StoreDmStruct>& store, double total_mass,
                  const std::vector<int>& thrust_phases);

}  // namespace kavren
