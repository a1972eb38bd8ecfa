// Physical constants and unit conversions, each defined once.
#pragma once

#include "kavren/bodies.h"

namespace kavren {

constexpr double kMuSun = 132712440018.0;          // km^3/s^2
constexpr double kAU = kKmPerAu;                   // km
constexpr double kDeg2Rad = 0.017453292519943295;  // rad/deg
constexpr double kSecondsPerDay = 86400.0;
// Epoch of every body's elements, and the origin of canonical time (MJD).
constexpr double kElementEpochMjd = 64328.0;
constexpr double kPi = 3.14159265358979323846;
constexpr double kTwoPi = 2.0 * kPi;

// Canonical units of the low-thrust integration: LU = 1 AU, mu = 1.
constexpr double kLU = kAU;                      // km
constexpr double kVU = 29.784691832592745;       // km/s
constexpr double kTU = 5022642.890912784;        // s
constexpr double kACC = 5.930083519670628e-06;   // km/s^2, VU / TU
constexpr double kStandardGravity = 0.00980665;  // km/s^2, for the engine's exhaust speed
constexpr double kSpecificImpulse = 4000.0;      // s, the engine's
constexpr double kKilonewtonsPerNewton = 0.001;  // thrust N to kg km/s^2

// MJD to canonical time since the element epoch.
inline double mjd_to_tu(double mjd) {
  return (mjd - kElementEpochMjd) * kSecondsPerDay / kTU;
}

}  // namespace kavren
