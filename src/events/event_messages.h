// Message helpers shared by the launch, flyby and rendezvous checks: every event error is
// one line made of a prefix, the 1-based file line number written directly behind it,
// and a suffix.
#pragma once

namespace kavren::events {

// Suffixes worded alike for every event that compares its two lines.
inline constexpr const char* kTimeDiffers =
    ": The time of two adjacent lines is different (exceeding the allowable error).";
inline constexpr const char* kPositionDiffers =
    ": The position of two adjacent lines is different (exceeding the allowable error).";
inline constexpr const char* kMassDiffers =
    ": The mass of two adjacent lines is different (exceeding the allowable error).";
inline constexpr const char* kVelocityDiffers =
    ": The velocity of two adjacent lines is different (exceeding the allowable error).";

// Tolerances of the two lines of one event and of a ship against the body it meets.
inline constexpr double kEpochTolerance = 1e-08;      // day
inline constexpr double kPositionTolerance = 1000.0;  // km
inline constexpr double kMassTolerance = 0.001;       // kg
inline constexpr double kVelocityTolerance = 0.001;   // km/s

// Writes prefix, line_index + 1, suffix and ends the line (newline and flush). The line
// number is formed in 64 bits so that no index can overflow on the way.
void print_line_error(const char* prefix, int line_index, const char* suffix);

}  // namespace kavren::events
