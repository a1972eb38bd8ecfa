#include "synth/nearmiss.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>

#include "lowthrust/arc_data.h"
#include "lowthrust/arc_integration.h"
#include "polish/thrust_text.h"
#include "readers/solution_reader.h"
#include "records/findings.h"
#include "synth/rng.h"

namespace synth {
namespace {

constexpr double kMinThrust = 0.05;  // N: an arc thrusting less is not turned

double norm3(const double* v) {
  return std::sqrt(v[0] * v[0] + v[1] * v[1] + v[2] * v[2]);
}

struct Turn {
  double axis[3];
  double degrees, drift_degrees, scale;
};

// The thrust lines of an arc (arc-relative index) with their place along its thrust.
struct ThrustLine {
  std::size_t index;
  double tau;
};

std::vector<ThrustLine> thrust_lines(const BurningArc& arc) {
  std::vector<ThrustLine> lines;
  for (std::size_t i = 0; i < arc.lines.size(); ++i) {
    if (norm3(arc.lines[i].data()) > kavren::kZeroThrust) lines.push_back({i, 0.0});
  }
  if (lines.empty()) return lines;
  const double t0 = arc.values[lines.front().index], t1 = arc.values[lines.back().index];
  for (ThrustLine& l : lines)
    l.tau = t1 > t0 ? 2.0 * (arc.values[l.index] - t0) / (t1 - t0) - 1.0 : 0.0;
  return lines;
}

// The arc with its thrust turned; the lines' new numbers into `turned`.
BurningArc turned_arc(const BurningArc& arc, const std::vector<ThrustLine>& lines, const Turn& t) {
  BurningArc out = arc;
  const double* k = t.axis;
  for (const ThrustLine& l : lines) {
    const double* v = arc.lines[l.index].data();
    const double angle = (t.degrees + t.drift_degrees * l.tau) * 0.017453292519943295;
    const double c = std::cos(angle), s = std::sin(angle);
    const double kxv[3] = {k[1] * v[2] - k[2] * v[1], k[2] * v[0] - k[0] * v[2],
                           k[0] * v[1] - k[1] * v[0]};
    const double kdv = k[0] * v[0] + k[1] * v[1] + k[2] * v[2];
    double u[3];
    for (int j = 0; j < 3; ++j)
      u[j] = (v[j] * c + kxv[j] * s + k[j] * kdv * (1.0 - c)) * (1.0 + t.scale);
    const double m = norm3(u);
    if (m > kavren::kThrustCap) {
      for (double& x : u) x *= kavren::kThrustCap / m * (1.0 - 1e-15);
    }
    out.lines[l.index].assign(u, u + 3);
  }
  return out;
}

// The position miss (km) the verifier finds at the arc's end.
double miss_of(const BurningArc& arc) {
  kavren::Findings findings(false, kavren::Rule::thrust_magnitude, kavren::Rule::arc_mass);
  kavren::ArcPhases phases;
  kavren::walk_thrust_table(arc, phases, findings, arc.ship_number);
  kavren::ArcIntegration run;
  kavren::integrate_and_compare(arc, phases, findings, run);
  double d[3];
  for (int k = 0; k < 3; ++k) d[k] = run.reached[k] - arc.end_state.r[k];
  return norm3(d);
}

}  // namespace

std::string near_miss(const std::string& result, std::uint64_t seed, int count,
                      std::vector<PlantedMiss>& planted) {
  if (count < 1 || count > 3) throw std::runtime_error("a near miss turns 1 to 3 arcs");
  std::vector<ShipClass> ships;
  int num_ships = 0;
  kavren::Findings reading(false);
  if (!kavren::read_solution(result, ships, num_ships, reading) || reading.any()) {
    throw std::runtime_error("the solution to turn is not valid");
  }
  // Ships with thrusting arcs, and those arcs.
  std::vector<std::vector<const BurningArc*>> candidates;
  for (const ShipClass& ship : ships) {
    std::vector<const BurningArc*> arcs;
    for (const BurningArc& arc : ship.burning_arcs) {
      double strongest = 0.0;
      for (const std::vector<double>& u : arc.lines)
        strongest = std::max(strongest, norm3(u.data()));
      if (strongest >= kMinThrust) arcs.push_back(&arc);
    }
    if (!arcs.empty()) candidates.push_back(arcs);
  }
  if (static_cast<int>(candidates.size()) < count) {
    throw std::runtime_error("the solution has fewer thrusting ships than arcs to turn");
  }
  Rng rng(seed * 7919 + 17);
  for (std::size_t k = candidates.size(); k > 1; --k) {
    std::swap(candidates[k - 1], candidates[rng.next() % k]);
  }
  const std::vector<std::size_t> starts = kavren::line_starts(result);
  std::vector<kavren::ThrustEdit> edits;
  planted.clear();
  for (int n = 0; n < count; ++n) {
    const std::vector<const BurningArc*>& arcs = candidates[static_cast<std::size_t>(n)];
    const BurningArc& arc = *arcs[rng.next() % arcs.size()];
    const std::vector<ThrustLine> lines = thrust_lines(arc);
    // The axis is square to the arc's first thrust: every line along it turns by the
    // whole angle.
    Turn turn{};
    const double* first = arc.lines[lines.front().index].data();
    const double fn = norm3(first);
    const double d[3] = {first[0] / fn, first[1] / fn, first[2] / fn};
    const double pick[3] = {std::abs(d[0]) < 0.6 ? 1.0 : 0.0, std::abs(d[0]) < 0.6 ? 0.0 : 1.0,
                            0.0};
    double e1[3] = {d[1] * pick[2] - d[2] * pick[1], d[2] * pick[0] - d[0] * pick[2],
                    d[0] * pick[1] - d[1] * pick[0]};
    const double e1n = norm3(e1);
    for (double& x : e1) x /= e1n;
    const double e2[3] = {d[1] * e1[2] - d[2] * e1[1], d[2] * e1[0] - d[0] * e1[2],
                          d[0] * e1[1] - d[1] * e1[0]};
    const double phi = rng.uniform(0.0, 6.283185307179586);
    for (int k = 0; k < 3; ++k) turn.axis[k] = std::cos(phi) * e1[k] + std::sin(phi) * e2[k];
    const double drift = rng.next() % 2 == 0 ? 0.0 : rng.uniform(-1.5, 1.5);
    if (rng.next() % 2 == 0) turn.scale = rng.uniform(1.0, 5.0) * 1e-4 * (rng.next() % 2 ? 1 : -1);
    const double target = 1000.0 * std::exp(rng.uniform(std::log(1.05), std::log(20.0)));
    // The miss grows about linearly with the turn: a few secant steps place it.
    double degrees = 0.05, miss = 0.0;
    for (int step = 0; step < 12; ++step) {
      turn.degrees = degrees;
      turn.drift_degrees = drift * degrees;
      miss = miss_of(turned_arc(arc, lines, turn));
      if (std::abs(miss - target) <= 0.02 * target) break;
      degrees *= miss > 0.0 ? std::clamp(target / miss, 0.2, 5.0) : 5.0;
    }
    if (!(miss > 1000.0 && miss <= 20000.0)) throw std::runtime_error("a miss out of range");
    const BurningArc turned = turned_arc(arc, lines, turn);
    for (const ThrustLine& l : lines) {
      kavren::ThrustEdit edit;
      edit.line = static_cast<std::size_t>(arc.first_line) + l.index;
      std::copy(turned.lines[l.index].begin(), turned.lines[l.index].end(), edit.u);
      edits.push_back(edit);
    }
    planted.push_back({arc.ship_number, arc.end_state.line_index + 1LL, turn.degrees,
                       turn.drift_degrees, turn.scale, miss});
  }
  return kavren::apply_thrust_edits(result, starts, edits);
}

}  // namespace synth
