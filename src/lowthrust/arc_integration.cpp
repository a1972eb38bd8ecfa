#include "lowthrust/arc_integration.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <sstream>
#include <string>

#include "astro/constants.h"
#include "kavren/limits.h"
#include "lowthrust/dynamics.h"
#include "lowthrust/rkf78_loop.h"

namespace kavren {
namespace {

constexpr int kDim = 7;
constexpr double kRelTol = 1e-12;
constexpr double kAbsTol[kDim] = {1e-10, 1e-10, 1e-10, 1e-12, 1e-12, 1e-12, 1e-08};
constexpr int kMaxEval = 100000;
constexpr double kNoCoastGap = 1e-13;  // TU: a smaller gap is not coasted
constexpr double kDaysPerTU = kTU / kSecondsPerDay;

double line_epoch(const ArcTable& table, long long relative) {
  return table.epoch(static_cast<std::size_t>(relative));
}

void to_physical(const double* y, double* state) {
  for (int i = 0; i < 3; ++i) {
    state[i] = y[i] * kLU;
    state[3 + i] = y[3 + i] * kVU;
  }
  state[6] = y[6];
}

// Watches the accepted steps of one leg: keeps them for the trajectory, flags steps
// that jump over thrust-table points, and honours the deadline.
template <class Model>
class LegObserver {
 public:
  LegObserver(ArcIntegration& run, Model& model, Findings& findings, const ThrustTable* table,
              double t0)
      : run_(run), model_(model), findings_(findings), table_(table), previous_(t0) {}

  int land(double t, const double* y, int) {
    keep(t, y);
    return 1;
  }
  int step(double t, const double* y, int) {
    keep(t, y);
    if (table_ != nullptr && run_.inspect_steps && !warned_) inspect(t);
    previous_ = t;
    return 0;
  }
  void tick() {
    if (run_.deadline != nullptr && (++ticks_ & 63) == 0) honour_deadline(run_.deadline);
  }

 private:
  void keep(double t, const double* y) {
    if (run_.trajectory == nullptr) return;
    TrajectoryPoint point;
    point.epoch = t * kDaysPerTU + kElementEpochMjd;
    double state[7];
    to_physical(y, state);
    for (int i = 0; i < 3; ++i) {
      point.r[i] = state[i];
      point.v[i] = state[3 + i];
    }
    point.mass = state[6];
    point.thrust = thrust_at(t);
    run_.trajectory->push_back(point);
  }
  double thrust_at(double t);
  void inspect(double t) {
    const double lo = std::min(previous_, t), hi = std::max(previous_, t);
    const double* begin = table_->times;
    const double* end = begin + table_->n;
    const long long inside = std::lower_bound(begin, end, hi) - std::upper_bound(begin, end, lo);
    if (inside < 2) return;
    warned_ = true;
    findings_.warn("step-spans-thrust-points",
                   "An accepted integration step spans " + std::to_string(inside) +
                       " thrust-table points: the step control cannot see the corners of the "
                       "thrust profile between them.",
                   {model_.line}, run_.ship);
  }

  ArcIntegration& run_;
  Model& model_;
  Findings& findings_;
  const ThrustTable* table_;
  double previous_;
  bool warned_ = false;
  unsigned ticks_ = 0;
};

template <>
double LegObserver<CoastModel>::thrust_at(double) {
  return 0.0;
}
template <>
double LegObserver<ThrustModel>::thrust_at(double t) {
  double u[3];
  return model_.thrust(t, u);
}

// One leg from t to tout on a fresh start. The state the integrator leaves is what the
// comparison judges; a leg that runs out of evaluations is flagged.
template <class Model>
void integrate(Model& model, double* y, double& t, double tout, Findings& findings,
               ArcIntegration& run, const ThrustTable* table, long long line) {
  double work[14 * kDim];
  int flag = 1;
  LegObserver<Model> observer(run, model, findings, table, t);
  RK::rkf78_integrate(model, y, t, tout, kDim, kRelTol, kAbsTol, flag, work, kMaxEval, observer);
  run.evaluations += model.evaluations;
  if (flag == 4) {
    findings.warn("evaluation-budget",
                  "The integration of a leg ran to its budget of evaluations and stopped short "
                  "of its end; the state compared is where it stopped.",
                  {line}, run.ship);
  }
}

struct Legs {
  const BurningArc& arc;
  const ArcTable& table;
  Findings& findings;
  ArcIntegration& run;
  double min_distance = std::numeric_limits<double>::infinity();

  void coast(double* y, double& t, double tout, long long line_reference) {
    CoastModel model;
    model.line = line_reference;
    try {
      integrate(model, y, t, tout, findings, run, nullptr, line_reference + 1);
    } catch (...) {
      min_distance = std::min(min_distance, model.min_distance);
      run.evaluations += model.evaluations;
      throw;
    }
    min_distance = std::min(min_distance, model.min_distance);
  }

  void thrust(const std::vector<double>& block, double* y, double& t, double tout) {
    ThrustModel model;
    model.table = thrust_table_of(block.data(), true);
    model.line = truncate_to_int(block[0]);
    try {
      integrate(model, y, t, tout, findings, run, &model.table, model.line);
    } catch (...) {
      min_distance = std::min(min_distance, model.min_distance);
      run.evaluations += model.evaluations;
      throw;
    }
    min_distance = std::min(min_distance, model.min_distance);
  }
};

// The arc's legs in order; false when the arc cannot be compared (a timing fault or a
// pass too close to the Sun) or the collector says to stop.
bool integrate_legs(const BurningArc& arc, const ArcPhases& phases, Legs& legs, double* y) {
  const ArcTable& table = legs.table;
  Findings& f = legs.findings;
  const int ship = legs.run.ship;
  double t = mjd_to_tu(arc.start_state.epoch);
  for (int i = 0; i < 3; ++i) {
    y[i] = arc.start_state.r[i] / kLU;
    y[3 + i] = arc.start_state.v[i] / kVU;
  }
  y[6] = arc.start_state.mass;
  const double tf = mjd_to_tu(arc.end_state.epoch);

  if (phases.count == 0) {
    legs.coast(y, t, tf, arc.start_state.line_index);
    return true;
  }
  const long long stored = static_cast<long long>(table.size());
  const long long segments = std::min<long long>(
      phases.count, static_cast<long long>(std::min(phases.starts.size(), phases.ends.size())));
  std::vector<double> block;
  for (long long k = 0; k < segments; ++k) {
    // Arc-relative indices: s is the opening zero line, e the last thrust line.
    const long long s = static_cast<long long>(phases.starts[k]) - arc.first_line;
    const long long e = static_cast<long long>(phases.ends[k]) - arc.first_line - 1;
    const long long n = e - s;
    // A phase whose thrust lines are not all stored in the arc is left out entirely
    // (never the case for phases listed by the walk).
    if (n < 1 || s + 1 < 0 || e >= stored) continue;

    const double ta = mjd_to_tu(line_epoch(table, s + 1));
    const double gap = ta - t;
    if (gap <= kNoCoastGap) {
      const long long line = static_cast<long long>(phases.starts[k]) + 1;
      if (!f.check(Rule::phase_start, !(gap < kArcOrderTolerance), gap * kDaysPerTU,
                   kArcOrderTolerance * kDaysPerTU, {line}, ship, [&] {
                     std::ostringstream text;
                     text << "Error003. Event Time Error on the line " << line
                          << ": The start epoch of the burning arc is " << line_epoch(table, s + 1)
                          << "(MJD), earlier than the end epoch of the previous event (or "
                             "burning arc).\n";
                     return text.str();
                   })) {
        return false;
      }
    } else if (gap > kNoCoastGap) {
      legs.coast(y, t, ta, static_cast<long long>(phases.starts[k]) - 1);
    }

    // Thrust table: times (TU) and thrust vectors of lines s+1 .. e.
    block.assign(static_cast<std::size_t>(4 * n + 2), 0.0);
    block[0] = static_cast<double>(static_cast<long long>(phases.starts[k]) + 1);
    block[1] = static_cast<double>(n);
    for (long long p = 0; p < n; ++p) {
      const long long line = s + 1 + p;
      block[static_cast<std::size_t>(2 + p)] = mjd_to_tu(line_epoch(table, line));
      for (int axis = 0; axis < 3; ++axis) {
        block[static_cast<std::size_t>(2 + (axis + 1) * n + p)] =
            table.thrust(static_cast<std::size_t>(line), axis);
      }
    }
    legs.thrust(block, y, t, mjd_to_tu(line_epoch(table, e)));
  }

  const double gap = tf - t;
  if (gap <= kNoCoastGap) {
    const long long line = static_cast<long long>(arc.last_line) + 1;
    const bool in_order = !(gap < kArcOrderTolerance);
    if (!f.check(Rule::arc_end_order, in_order, gap * kDaysPerTU, kArcOrderTolerance * kDaysPerTU,
                 {line}, ship, [&] {
                   std::ostringstream text;
                   text << "Error004. Event Time Error on the line " << line
                        << ": The end epoch of the burning arc is " << arc.end_epoch
                        << "(MJD), later than the start epoch of the subsequent event.\n";
                   return text.str();
                 })) {
      return false;
    }
    // The state ran past the arc's end: nothing to compare it with.
    return in_order;
  }
  legs.coast(y, t, tf, arc.last_line);
  return true;
}

}  // namespace

bool compare_end_state(const BurningArc& arc, const double* reached, Findings& f, int ship) {
  const StateStruct& end = arc.end_state;
  const long long shown = printed_line(end.line_index);
  const double dx = reached[0] - end.r[0];
  const double dy = reached[1] - end.r[1];
  const double dz = reached[2] - end.r[2];
  const double dr = std::sqrt(dx * dx + dy * dy + dz * dz);
  const char* const between =
      ": The position error between the integral state from the previous event and the state "
      "shown in the file is ";
  if (!f.check(Rule::arc_position, !(dr > kPositionTolerance), dr, kPositionTolerance, {shown},
               ship, [&] {
                 std::ostringstream text;
                 text << "Error201. Position Error on the line " << shown << between << dr
                      << " km, greater than the constraint 1000 km.\n";
                 return text.str();
               })) {
    return false;
  }
  const double dvx = reached[3] - end.v[0];
  const double dvy = reached[4] - end.v[1];
  const double dvz = reached[5] - end.v[2];
  const double dv = std::sqrt(dvx * dvx + dvy * dvy + dvz * dvz);
  if (!f.check(Rule::arc_velocity, !(dv > kVelocityTolerance), dv, kVelocityTolerance, {shown},
               ship, [&] {
                 std::ostringstream text;
                 text << "Error202. Velocity Error on the line " << shown
                      << ": The velocity error between the integral state from the previous "
                         "event and the state shown in the file is "
                      << dv * 1000 << " m/s, greater than the constraint 1 m/s.\n";
                 return text.str();
               })) {
    return false;
  }
  const double dm = std::abs(reached[6] - end.mass);
  return f.check(Rule::arc_mass, !(dm > kMassTolerance), dm, kMassTolerance, {shown}, ship, [&] {
    std::ostringstream text;
    text << "Error203. Mass Error on the line " << shown
         << ": The mass error between the integral state from the previous event and the state "
            "shown in the file is "
         << dm << " kg, greater than the constraint 0.001 kg.\n";
    return text.str();
  });
}

bool integrate_and_compare(const BurningArc& arc, const ArcPhases& phases, Findings& findings,
                           ArcIntegration& run) {
  return integrate_and_compare(arc, ArcTable(arc), phases, findings, run);
}

bool integrate_and_compare(const BurningArc& arc, const ArcTable& table, const ArcPhases& phases,
                           Findings& findings, ArcIntegration& run) {
  Legs legs{arc, table, findings, run};
  double y[kDim];
  bool comparable = false;
  if (run.trajectory != nullptr) {
    const StateStruct& start = arc.start_state;
    run.trajectory->push_back(TrajectoryPoint{start.epoch,
                                              {start.r[0], start.r[1], start.r[2]},
                                              {start.v[0], start.v[1], start.v[2]},
                                              start.mass,
                                              0.0});
  }
  const long long end_line = printed_line(arc.end_state.line_index);
  try {
    comparable = integrate_legs(arc, phases, legs, y);
  } catch (const SunApproach& at) {
    findings.evaluate(Rule::sun_distance, false, at.distance, kMinSunDistance, at.first_line,
                      run.ship);
    return findings.fail(Rule::sun_distance, sun_approach_message(at),
                         {at.first_line, at.second_line}, run.ship, at.distance, kMinSunDistance);
  }
  if (legs.min_distance < std::numeric_limits<double>::infinity()) {
    findings.evaluate(Rule::sun_distance, true, legs.min_distance, kMinSunDistance, end_line,
                      run.ship);
  }
  if (findings.stopped()) return false;
  to_physical(y, run.reached);
  if (!comparable) return true;
  return compare_end_state(arc, run.reached, findings, run.ship);
}

bool integrate_arc(const BurningArc& arc, int count, const std::vector<int>& starts,
                   const std::vector<int>& ends, double* reached, Findings& findings) {
  ArcPhases phases;
  phases.count = count;
  phases.starts = starts;
  phases.ends = ends;
  ArcIntegration run;
  run.ship = arc.ship_number;
  const ArcTable table(arc);
  Legs legs{arc, table, findings, run};
  double y[kDim];
  try {
    integrate_legs(arc, phases, legs, y);
  } catch (const SunApproach& at) {
    findings.fail(Rule::sun_distance, sun_approach_message(at), {}, 0);
  }
  if (findings.any()) return false;
  to_physical(y, reached);
  return true;
}

}  // namespace kavren
