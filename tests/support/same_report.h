// Two reports compared field by field, numbers bit for bit (a NaN equals a NaN), every
// field but the statistics, which say how the report was made, and, unless asked for, the
// trajectories, which the options decide.
#pragma once

#include <cstring>
#include <string>

#include "kavren/report.h"

namespace kavren::test {

inline bool same_bits(double a, double b) {
  return std::memcmp(&a, &b, sizeof a) == 0;
}

// Empty when equal, else the first field that differs.
inline std::string report_difference(const Report& a, const Report& b, bool trajectories = true) {
  auto differs = [](bool equal, const std::string& what) { return equal ? std::string() : what; };
  std::string d;
  if (!(d = differs(a.outcome == b.outcome && a.error == b.error, "outcome")).empty() ||
      !(d = differs(a.checker_output == b.checker_output && a.exit_status == b.exit_status &&
                        a.score_file == b.score_file && a.accepted == b.accepted,
                    "verdict: " + a.checker_output + " / " + b.checker_output))
           .empty() ||
      !(d = differs(a.findings.size() == b.findings.size(), "finding count")).empty() ||
      !(d = differs(a.constraints.size() == b.constraints.size(), "constraint count")).empty() ||
      !(d = differs(a.warnings.size() == b.warnings.size(), "warning count")).empty() ||
      !(d = differs(!trajectories || a.trajectories.size() == b.trajectories.size(),
                    "trajectories"))
           .empty()) {
    return d;
  }
  for (std::size_t k = 0; k < a.findings.size(); ++k) {
    const Finding &x = a.findings[k], &y = b.findings[k];
    if (x.code != y.code || x.message != y.message || x.lines != y.lines || x.ship != y.ship ||
        x.quantity != y.quantity || x.unit != y.unit || x.first != y.first ||
        x.exit_status != y.exit_status || !same_bits(x.value, y.value) ||
        !same_bits(x.limit, y.limit) || !same_bits(x.margin, y.margin)) {
      return "finding " + std::to_string(k) + ": " + x.message + " / " + y.message;
    }
  }
  for (std::size_t k = 0; k < a.constraints.size(); ++k) {
    const Constraint &x = a.constraints[k], &y = b.constraints[k];
    if (x.rule != y.rule || x.evaluations != y.evaluations || x.violations != y.violations ||
        !same_bits(x.worst, y.worst) || !same_bits(x.limit, y.limit) ||
        !same_bits(x.margin, y.margin) || x.line != y.line || x.ship != y.ship ||
        x.passed != y.passed) {
      return "constraint " + x.rule + " / " + y.rule;
    }
  }
  for (std::size_t k = 0; k < a.warnings.size(); ++k) {
    const Warning &x = a.warnings[k], &y = b.warnings[k];
    if (x.kind != y.kind || x.message != y.message || x.lines != y.lines || x.ship != y.ship ||
        x.rule != y.rule) {
      return "warning " + x.message + " / " + y.message;
    }
  }
  const Summary &s = a.summary, &t = b.summary;
  if (s.ships != t.ships || s.mined_asteroids != t.mined_asteroids ||
      !same_bits(s.total_resource_mass, t.total_resource_mass) ||
      s.per_ship.size() != t.per_ship.size()) {
    return "summary";
  }
  for (std::size_t k = 0; k < s.per_ship.size(); ++k) {
    const ShipSummary &x = s.per_ship[k], &y = t.per_ship[k];
    if (x.ship != y.ship || !same_bits(x.launch_epoch, y.launch_epoch) ||
        !same_bits(x.final_mass, y.final_mass) || x.miners != y.miners ||
        !same_bits(x.resources, y.resources) || !same_bits(x.last_drop_epoch, y.last_drop_epoch) ||
        x.thrust_phases != y.thrust_phases || x.events.size() != y.events.size()) {
      return "summary of ship " + std::to_string(k + 1);
    }
    for (std::size_t e = 0; e < x.events.size(); ++e) {
      const EventMark &m = x.events[e], &n = y.events[e];
      if (m.kind != n.kind || m.body_id != n.body_id || m.line != n.line ||
          !same_bits(m.epoch, n.epoch) || !same_bits(m.mass, n.mass)) {
        return "event " + std::to_string(e) + " of ship " + std::to_string(k + 1);
      }
    }
  }
  for (std::size_t k = 0; trajectories && k < a.trajectories.size(); ++k) {
    const Trajectory &x = a.trajectories[k], &y = b.trajectories[k];
    if (x.ship != y.ship || x.points.size() != y.points.size() ||
        (!x.points.empty() &&
         std::memcmp(x.points.data(), y.points.data(), x.points.size() * sizeof x.points[0]))) {
      return "trajectory " + std::to_string(k);
    }
  }
  return {};
}

}  // namespace kavren::test
