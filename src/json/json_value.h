// The report as a JSON value, for code built with nlohmann-json. Its objects sort their
// keys; report_to_json's text keeps the declaration order, with the same content.
#pragma once

#include <nlohmann/json.hpp>

#include "kavren/json.h"

namespace kavren {

nlohmann::json report_to_json_value(const Report& report);

}  // namespace kavren
