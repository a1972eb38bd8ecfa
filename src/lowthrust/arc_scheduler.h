// Verification of all burning arcs, spread over worker threads with a verdict identical
// to checking them one after the other: the failure reported is the first in file order
// (ship by ship, arc by arc, layout check before integration).
#pragma once

#include <cstdint>
#include <vector>

#include "records/records.h"

namespace kavren {

// The layout check and the integration of one arc, on a copy of it.
void check_arc(const BurningArc& arc);
// Worker count: KAVREN_THREADS when it holds a positive number, else the hardware's.
int arc_worker_count();
// Derivative evaluations made by the last CheckBuringArc over all ships, all workers.
std::uint64_t last_arc_stage_evaluations();

}  // namespace kavren
