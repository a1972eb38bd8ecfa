// Physical constants and mission limits shared across the verifier.
#pragma once

namespace kavren {

constexpr double kMuSun = 132712440018.0;          // km^3/s^2
constexpr double kAU = 149597870.691;               // km
constexpr double kDeg2Rad = 0.017453292519943295;  // rad/deg
constexpr double kSecondsPerDay = 86400.0;
constexpr double kMjdStart = 64328.0;  // mission start, element epoch of every body
constexpr double kMjdEnd = 69807.0;    // mission end
constexpr double kPi = 3.14159265358979323846;
constexpr double kTwoPi = 2.0 * kPi;

}  // namespace kavren
