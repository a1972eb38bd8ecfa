// Cost of the low-thrust dynamics inside a one-year thrust phase of 365 one-day lines:
// whole arc integrations (integrator algebra included) and bare derivative calls with the
// table located by bisection and by a scan from its start.
#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <vector>

#include "astro/constants.h"
#include "lowthrust/arc_data.h"
#include "lowthrust/arc_integration.h"
#include "lowthrust/dynamics.h"

namespace {

using Clock = std::chrono::steady_clock;

double seconds_since(Clock::time_point start) {
  return std::chrono::duration<double>(Clock::now() - start).count();
}

constexpr double kStart = 65000.0;  // MJD
constexpr int kThrustLines = 365;

// A ship on a circular 1 AU orbit thrusting 0.3 N along its velocity for a year.
BurningArc one_year_arc() {
  BurningArc arc;
  arc.first_line = 1;
  const double pi = std::acos(-1.0);
  auto push = [&](double epoch, double magnitude) {
    const double angle = 2.0 * pi * (epoch - kStart) / 365.25;
    arc.values.push_back(epoch);
    arc.lines.push_back({-magnitude * std::sin(angle), magnitude * std::cos(angle), 0.0});
  };
  push(kStart, 0.0);
  for (int day = 0; day < kThrustLines; ++day) push(kStart + day, 0.3);
  push(kStart + kThrustLines - 1, 0.0);
  arc.last_line = arc.first_line + static_cast<int>(arc.values.size()) - 1;
  arc.start_state.line_index = 0;
  arc.start_state.epoch = kStart;
  arc.start_state.r[0] = 149597870.691;
  arc.start_state.v[1] = 29.784691832592745;
  arc.start_state.mass = 1500.0;
  arc.end_state = arc.start_state;
  arc.end_state.line_index = arc.last_line + 1;
  arc.end_state.epoch = kStart + kThrustLines - 1;
  arc.start_epoch = arc.start_state.epoch;
  arc.end_epoch = arc.end_state.epoch;
  return arc;
}

}  // namespace

int main() {
  BurningArc arc = one_year_arc();
  kavren::ArcPhases layout;
  kavren::Findings laid_out(true);
  kavren::walk_thrust_table(arc, layout, laid_out, 1);
  const int count = layout.count;
  const std::vector<int>& starts = layout.starts;
  const std::vector<int>& ends = layout.ends;

  // Whole arcs.
  const int runs = 20;
  kavren::ArcPhases phases;
  phases.count = count;
  phases.starts = starts;
  phases.ends = ends;
  std::uint64_t evaluations = 0;
  double reached[7];
  const auto start = Clock::now();
  for (int run = 0; run < runs; ++run) {
    kavren::Findings findings(false);
    kavren::ArcIntegration integration;
    kavren::integrate_and_compare(arc, phases, findings, integration);
    evaluations += integration.evaluations;
    for (int k = 0; k < 7; ++k) reached[k] = integration.reached[k];
  }
  const double elapsed = seconds_since(start);
  std::printf("arc: %d phase(s), %d thrust lines, %.1f ms per arc, %llu evaluations per arc\n",
              count, kThrustLines, 1e3 * elapsed / runs,
              static_cast<unsigned long long>(evaluations / runs));
  std::printf("arc: %.1f ns per evaluation, integrator algebra included\n",
              1e9 * elapsed / static_cast<double>(evaluations));
  std::printf("arc: final mass %.6f kg, distance %.6f AU\n", reached[6],
              std::sqrt(reached[0] * reached[0] + reached[1] * reached[1]) / 149597870.691);

  // Bare calls on the same table, in the parameter block layout of the dynamics.
  std::vector<double> block = {2.0, static_cast<double>(kThrustLines)};
  for (int k = 0; k < kThrustLines; ++k) block.push_back(kavren::mjd_to_tu(arc.values[k + 1]));
  for (int axis = 0; axis < 3; ++axis) {
    for (int k = 0; k < kThrustLines; ++k) block.push_back(arc.lines[k + 1][axis]);
  }
  const double t0 = block[2];
  const double span = block[1 + kThrustLines] - t0;
  const int calls = 2000000;
  double y[7] = {1.0, 0.0, 0.0, 0.0, 1.0, 0.0, 1500.0};
  double dy[7];
  double sink = 0.0;
  for (int mode = 0; mode < 2; ++mode) {
    const bool ordered = mode == 0;
    kavren::ThrustModel model;
    model.table = kavren::thrust_table_of(block.data(), ordered);
    const auto begin = Clock::now();
    for (int i = 0; i < calls; ++i) {
      // Stride through the year so that successive calls land on different intervals.
      const double t =
          t0 + span * static_cast<double>((static_cast<long long>(i) * 7919) % calls) / calls;
      model(t, y, dy);
      sink += dy[6];
    }
    std::printf("call: %.1f ns per evaluation (%s)\n", 1e9 * seconds_since(begin) / calls,
                ordered ? "ordered table, bisection" : "table scanned from the start");
  }
  return sink == 0.0 ? 1 : 0;
}
