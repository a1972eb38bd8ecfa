// The report of one verification as JSON, the form scripts read: one object whose keys
// are the members of kavren::Report and its parts, in declaration order, headed by
// "schema": 1. Statistics and trajectories are left out (they depend on the worker
// count and the options, not on the solution). A double that is not finite is null.
// docs/report-schema.md describes every field.
#pragma once

#include <string>

#include <nlohmann/json.hpp>

#include "kavren/report.h"

namespace kavren {

inline constexpr int kReportSchema = 1;

// The text, compact (indent -1) or indented by `indent` spaces. Bytes that are not
// UTF-8 in the solution's text are replaced by U+FFFD.
std::string report_to_json(const Report& report, int indent = -1);

// The same object as a value (its keys then sort by name, as nlohmann::json keeps them).
nlohmann::json report_to_json_value(const Report& report);

// The same object with its keys in the documented order, for callers that wrap it
// (kavren-report's array of several files puts "file" first).
nlohmann::ordered_json report_to_ordered_json(const Report& report);

// Text of an ordered value, with the same rules as report_to_json.
std::string json_text(const nlohmann::ordered_json& value, int indent = -1);

}  // namespace kavren
