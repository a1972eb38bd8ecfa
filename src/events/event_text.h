// The wording shared by the event messages.
#pragma once

#include <string>

#include "events/event_checks.h"

namespace kavren {

// Suffixes worded alike for every event that compares its two lines.
inline constexpr const char* kTimeDiffers =
    ": The time of two adjacent lines is different (exceeding the allowable error).";
inline constexpr const char* kPositionDiffers =
    ": The position of two adjacent lines is different (exceeding the allowable error).";
inline constexpr const char* kMassDiffers =
    ": The mass of two adjacent lines is different (exceeding the allowable error).";
inline constexpr const char* kVelocityDiffers =
    ": The velocity of two adjacent lines is different (exceeding the allowable error).";

// "<code>. Data Error of the event of <event> on the line<line><suffix>\n".
inline std::string event_message(const char* code, const char* event, long long line,
                                 const char* suffix) {
  std::string text(code);
  text += ". Data Error of the event of ";
  text += event;
  text += " on the line";
  return line_message(text.c_str(), line, suffix);
}

}  // namespace kavren
