// Solution records: the plain values into which the solution file is read and on
// which every check works. Epochs in MJD, positions km, velocities km/s, masses kg.
#pragma once

#include <string_view>
#include <vector>

#include "kavren/limits.h"

// One decoded event line.
struct StateStruct {
  int line_index = 0;  // 0-based index of the solution-file line; messages print it + 1
  double epoch = 0.0;
  double r[3] = {0.0, 0.0, 0.0};
  double v[3] = {0.0, 0.0, 0.0};
  double mass = 0.0;
};

// Launch from the Earth: two adjacent lines with event ID 0.
struct LaunchClass {
  int body_id = 0;
  StateStruct state_before;
  StateStruct state_after;
  double launch_value = 0.0;  // carried along, read by no check

  bool check_2lines_trm() const;
  bool check_initialmass() const;
  bool check_vinf() const;
  bool check_rv_ifequal2Earth() const;
  bool check_launchevent() const;
};

// Gravity assist at Venus (-2), the Earth (-3) or Mars (-4).
struct FlybyClass {
  int body_id = 0;
  StateStruct state_before;
  StateStruct state_after;
  double mass_change = 0.0;     // second line's mass minus first line's
  double vinf_magnitude = 0.0;  // incoming excess speed, written by a passing check_flyby
  // Set by the reader: an Earth flyby slow enough to drop resources. It closes a group of
  // the ship's ledger whatever its mass change; the ledger, the summary and the report
  // read this mark and nothing else.
  bool drop = false;

  bool check_2lines_trm() const;
  bool check_r_ifequal2Star() const;
  bool check_flyby();
  bool check_flybyevent();
};

// Rendezvous with catalogue asteroid body_id (1..60000).
struct VisitClass {
  int body_id = 0;
  StateStruct state_before;
  StateStruct state_after;
  double mass_change = 0.0;  // positive: resources taken on; negative: miner left behind

  // A miner is left behind when the mass falls; otherwise (zero included) resources are
  // taken on.
  bool leaves_miner() const { return mass_change < 0.0; }

  bool check_2lines_trv() const;
  bool check_rv_ifequal2asteroid() const;
  bool check_visitevent() const;
};

// Low-thrust arc between two consecutive events of one ship.
struct BurningArc {
  int ship_number = 0;  // 1-based ordinal of the ship
  double start_epoch = 0.0;
  double end_epoch = 0.0;
  StateStruct start_state;                 // last line of the previous event
  StateStruct end_state;                   // first line of the following event
  std::vector<std::vector<double>> lines;  // thrust ux, uy, uz (N) of each arc line
  std::vector<double> values;              // epoch (MJD) of each arc line
  int first_line = -1;  // file line index of the first arc line, -1 for a pure coast
  int last_line = -1;   // inclusive; -1 for a pure coast
  // The arc lines as written, from the first to the last, when the reader left them in
  // the solution's text (which must then outlive the arc) instead of filling `lines` and
  // `values`: their numbers are read where the arc is verified.
  std::string_view text;
};

// One entry of a ship's resource bookkeeping.
struct DmStructShip {
  int line_index = 0;
  double mass_change = 0.0;
  double epoch = 0.0;
};

class ShipClass {
 public:
  int ship_id = -1;  // 1-based ordinal of the ship in the file
  LaunchClass launch;
  std::vector<BurningArc> burning_arcs;
  std::vector<FlybyClass> flybys;
  std::vector<VisitClass> visits;
  std::vector<std::vector<DmStructShip>> dm_groups;  // each group ends with an Earth drop
  double mass_of_resources = 0.0;
  double time_of_LRE = kavren::kMissionStartMjd;  // epoch of the last drop at the Earth
  int num_miners = 0;
  double final_mass = kavren::kDryMass;
  double mass_collected = 0.0;

  double get_mass_of_resources() const { return mass_of_resources; }
  void set_mass_of_resources(double m) { mass_of_resources = m; }
  double get_time_of_LRE() const { return time_of_LRE; }
  double get_num_miners() const { return static_cast<double>(num_miners); }
  void set_final_mass(double m) { final_mass = m; }

  bool check_all();
  bool check_dm();
  void calculate_time_of_LRE();
  bool calculate_check_num_miners();
  bool check_final_mass() const;
};
