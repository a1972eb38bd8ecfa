// The limits and tolerances of the problem's rules, each named for what it limits and
// defined once: the checks test against these, and programs that show results draw them.
// Epochs in MJD (days), distances km, speeds km/s, masses kg, thrust N.
#pragma once

namespace kavren {

// Mission window.
constexpr double kMissionStartMjd = 64328.0;
constexpr double kMissionEndMjd = 69807.0;

// The two lines of one event, and a ship against the body it meets.
constexpr double kEpochTolerance = 1e-08;      // day
constexpr double kPositionTolerance = 1000.0;  // km; also an arc's end position
constexpr double kVelocityTolerance = 0.001;   // km/s; also a flyby's excess-speed change
                                               // and an arc's end velocity
constexpr double kMassTolerance = 0.001;       // kg; every mass compared: event lines,
                                               // resource balance, miner, collection
                                               // allowance, arc end mass

// Launch and Earth drops: 6.0 km/s as the messages state it, tested with 0.001 km/s of
// margin.
constexpr double kMaxExcessSpeed = 6.001;  // km/s
constexpr double kMaxLaunchMass = 3000.0;  // kg

// Flybys: the turn may exceed the largest a pass at the minimum radius allows by this
// much; a pass slower than kMinTurnSpeed has no direction and its turn is not tested.
constexpr double kFlybyTurnMargin = 1e-30;  // rad
constexpr double kMinTurnSpeed = 0.001;     // km/s

// Mining.
constexpr double kMinerMass = 40.0;  // kg left behind at a first rendezvous
constexpr int kMaxMinersPerShip = 20;
constexpr double kDryMass = 500.0;  // kg, the smallest final mass without resources
// A hair below a Julian year, so that exactly 365.25 days (and any rounding error below
// 1e-8 days) still counts as a full year of mining.
constexpr double kMinMiningInterval = 365.24999999;  // days
constexpr double kMinedPerYear = 10.0;               // kg a miner gathers per year
constexpr double kJulianYear = 365.25;               // days of that year

// Fleet size: up to 2 exp(kShipGrowthPerKg * average delivered mass) ships.
constexpr double kShipGrowthPerKg = 0.004;
constexpr int kMaxShips = 100;

// Thrust tables.
constexpr double kThrustCap = 0.6;               // N, the engine's limit (and the message's)
constexpr double kThrustCapTested = 0.60000001;  // N, the cap with 1e-8 N of allowance
constexpr double kZeroThrust = 1e-08;            // N, a line below it does not thrust
constexpr double kSameEpoch = 1e-08;             // days, two lines closer are simultaneous
constexpr double kThrustStep = 1.0;              // day between thrust lines

// Arcs.
constexpr double kMinSunDistance = 0.3;        // AU
constexpr double kArcOrderTolerance = -1e-08;  // TU (about 0.05 s) a phase may start
                                               // before the state's epoch

}  // namespace kavren
