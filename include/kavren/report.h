// What one verification of a solution finds: the verdict kavren-check prints, every
// violated rule with its margin, one row per rule checked, warnings, a summary and,
// on request, the states sampled along every arc. Plain values, no behaviour.
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <vector>

namespace kavren {

inline constexpr double kNotANumber = std::numeric_limits<double>::quiet_NaN();

// One violated rule.
struct Finding {
  std::string code;              // "Error704", "ErrorA03" ...
  std::string message;           // the exact text kavren-check prints for it, newline included
  std::vector<long long> lines;  // 1-based lines of the solution file it concerns
  int ship = 0;                  // 1-based ordinal of the ship, 0 when none
  std::string quantity;          // what was compared, e.g. "position error to the asteroid"
  double value = kNotANumber;
  double limit = kNotANumber;
  double margin = kNotANumber;  // signed, in `unit`; negative means violated
  std::string unit;
  bool first = false;   // the finding kavren-check prints
  int exit_status = 0;  // kavren-check's exit status when this finding is first
};

// One rule the solution was checked against, over all its evaluations.
struct Constraint {
  std::string rule;  // stable identifier, e.g. "rendezvous.position"
  std::string code;  // the message code of a violation, e.g. "Error704"
  std::string quantity;
  std::string unit;
  std::string relation;  // "<=", ">=", "<", ">": value relation limit must hold
  std::uint64_t evaluations = 0;
  std::uint64_t violations = 0;
  double worst = kNotANumber;   // the value with the smallest margin (NaN: none evaluated)
  double limit = kNotANumber;   // the limit at that evaluation
  double margin = kNotANumber;  // its margin
  long long line = 0;           // where the worst value was met (1-based, 0: none)
  int ship = 0;
  bool passed = true;  // no evaluation violated the rule
};

// Something that passes only by accident of the rules.
struct Warning {
  std::string kind;     // "nan-passes", "zero-length-thrust-step", "evaluation-budget",
                        // "near-limit", "step-spans-thrust-points"
  std::string message;  // one sentence for people
  std::vector<long long> lines;
  int ship = 0;
  std::string rule;  // the constraint concerned, when there is one
};

// An event of a ship as the file states it (the first line of its pair).
struct EventMark {
  // "launch", "flyby", "rendezvous", "drop": an Earth flyby at or below 6.001 km/s, which
  // closes a group of the ship's ledger whatever its mass change.
  std::string kind;
  int body_id = 0;
  long long line = 0;  // 1-based
  double epoch = kNotANumber;
  double r[3] = {kNotANumber, kNotANumber, kNotANumber};
  double mass = kNotANumber;
};

struct ShipSummary {
  int ship = 0;
  double launch_epoch = kNotANumber;  // MJD
  double final_mass = kNotANumber;    // kg
  int miners = 0;
  double resources = 0.0;                // kg collected at rendezvous
  double last_drop_epoch = kNotANumber;  // MJD of the last Earth drop; NaN without one
  int thrust_phases = 0;
  std::vector<EventMark> events;
};

struct Summary {
  int ships = 0;
  std::size_t mined_asteroids = 0;
  double total_resource_mass = 0.0;  // kg
  std::vector<ShipSummary> per_ship;
};

// One state along an arc: epoch MJD, position km, velocity km/s, mass kg, thrust N.
struct TrajectoryPoint {
  double epoch;
  double r[3];
  double v[3];
  double mass;
  double thrust;
};
static_assert(sizeof(TrajectoryPoint) == 9 * sizeof(double), "nine doubles a row");

struct Trajectory {
  int ship = 0;
  std::vector<TrajectoryPoint> points;  // in time order, every accepted integration step
};

// How a verification ended.
enum class Outcome {
  verified,       // every rule was evaluated as the mode asks; the verdict stands
  limit_reached,  // a byte limit or deadline of the options stopped it
  out_of_memory,  // memory could not be had
};

struct Statistics {
  std::uint64_t derivative_evaluations = 0;
  std::size_t arcs = 0;
  std::size_t lines = 0;
  std::size_t ships_verified = 0;  // ships read and verified by this call
  std::size_t ships_cached = 0;    // ships a session took from what it verified before
};

struct Report {
  Outcome outcome = Outcome::verified;
  std::string error;                      // the reason when outcome is not verified
  std::string checker_output;             // the bytes kavren-check prints
  int exit_status = 0;                    // kavren-check's exit status
  std::optional<std::string> score_file;  // the bytes of ScoreData.txt, when written
  bool accepted = false;                  // no finding: "Check successfully!"
  std::vector<Finding> findings;          // in the order the checks meet them
  std::vector<Constraint> constraints;    // one row per rule, in the order of the checks
  std::vector<Warning> warnings;
  Summary summary;
  std::vector<Trajectory> trajectories;  // one per ship when asked for, else empty
  Statistics statistics;
};

}  // namespace kavren
