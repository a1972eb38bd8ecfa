// Writes a solution line by line, valid by construction: every arc's end state is the
// verifier's own integration of the arc as it will read it, every encounter is checked
// against the real ephemeris while it is written, and the expected verdict is kept by an
// independent bookkeeping of the mining rules.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "records/records.h"
#include "synth/catalogue.h"

namespace synth {

// One thrust phase: an opening zero-thrust line at `start`, `lines` thrust lines one day
// apart from `start` with thrust u (N), an optional last step shorter than a day, and a
// closing zero-thrust line at the epoch of the last thrust line.
struct Phase {
  double start = 0.0;
  int lines = 2;
  double last_step = 0.0;  // 0: none; otherwise a step in (0, 1) days
  double u[3] = {0.0, 0.0, 0.0};
};

class Builder {
 public:
  explicit Builder(Catalogue& catalogue) : catalogue_(catalogue) {}

  void begin_ship();
  // Two launch lines at the Earth: the second adds vinf (km/s).
  void launch(double epoch, const double* vinf, double mass);
  // Burning-arc lines from the last event to `epoch`, then the state reached there.
  void arc_to(double epoch, const std::vector<Phase>& phases = {});
  // Rendezvous leaving a 40 kg miner, with `asteroid` or, when 0, with a new asteroid
  // planted at the reached state. Returns the asteroid's ID.
  int deploy(int asteroid = 0);
  // Plants an asteroid at the reached state without meeting it (a partner ship on the
  // same orbit meets it later).
  int plant_here();
  // Rendezvous with an asteroid already planted: resources of `mass` kg taken on.
  void collect(int asteroid, double mass);
  // Earth flyby at the reached state, dropping everything collected since the last drop.
  void earth_drop();
  // Flyby of body (-2, -3, -4) at the reached state leaving with velocity vout
  // (heliocentric). The mass stays, except at an Earth pass slow enough to count as an
  // unloading (at most 6.001 km/s), which drops everything collected since the last drop.
  // Both lines are checked against the flyby rule; a breach throws.
  void flyby(int body, const double* vout);

  double reached_epoch() const { return reached_.epoch; }
  const double* reached_rv() const { return reached_rv_; }
  int num_lines() const { return static_cast<int>(lines_.size()); }
  int num_ships() const { return ship_; }

  std::string result_text() const;
  std::string expected_stdout() const;
  std::string expected_score() const;

 private:
  StateStruct write_event(int event_id, double epoch, const double* r, const double* v,
                          double mass);
  void check_at_body(int body, const StateStruct& s, double max_dv) const;
  void check_flyby_rule(int body, const StateStruct& in, const StateStruct& out) const;

  Catalogue& catalogue_;
  std::vector<std::string> lines_;
  int ship_ = 0;
  StateStruct last_;     // second line of the ship's last event
  StateStruct reached_;  // where the last arc ended (epoch, r, v, mass)
  double reached_rv_[6] = {0, 0, 0, 0, 0, 0};
  double carried_ = 0.0;  // resources collected since the last drop
  struct Visit {
    int asteroid;
    double epoch;
    double mass_change;
    int ship;
  };
  std::vector<Visit> visits_;        // file order
  std::map<int, double> last_drop_;  // ship -> epoch of its last Earth drop
};

}  // namespace synth
