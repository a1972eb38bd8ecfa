// The wording shared by the event messages, and the printing form of the event checks.
#pragma once

#include <string>

#include "events/event_checks.h"
#include "records/announce.h"

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

// Runs one event check on a stopping collector over the process-wide catalogue and
// prints its finding.
template <class Event, class Check>
bool announce_event(Event& event, Check check) {
  Findings findings(true);
  EventContext context{findings, t_eles_asteroids, 0};
  check(event, context);
  return announce(findings);
}

}  // namespace kavren
