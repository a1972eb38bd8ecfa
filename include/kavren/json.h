// The report of one verification as JSON (library kavren::json): one object whose keys are the
// members of kavren::Report and its parts, in declaration order, after "schema". The sampled
// trajectories and the run statistics are left out: they depend on the options and the
// worker count, not on the solution. Non-finite numbers are written as null.
// docs/report-schema.md describes every field.
#pragma once

#include <string>

#include "kavren/report.h"

namespace kavren {

// The version of the layout below; it changes when a field changes meaning or goes.
inline constexpr int kReportSchema = 1;

// The report as JSON text; indent < 0 writes one line, otherwise that many spaces a level.
std::string report_to_json(const Report& report, int indent = -1);

// "verified", "limit_reached" or "out_of_memory".
const char* outcome_name(Outcome outcome);

}  // namespace kavren
