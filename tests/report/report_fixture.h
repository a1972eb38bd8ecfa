// A report filled by hand, shaped like one of a mining fleet: ships spiralling out from
// the Earth's orbit with thrust phases, every kind of event, two violated rules, a NaN
// that passed, and the states sampled along the arcs. It exercises the renderings
// without depending on any verification.
#pragma once

#include <cmath>
#include <string>

#include "kavren/report.h"

namespace kavren::test {

// One line of a solution file per event line and thrust line of the fixture.
struct FixtureRun {
  Report report;
  std::string solution;  // lines the findings name exist and can be quoted
};

inline FixtureRun fixture_report(int ships, int samples_per_ship) {
  constexpr double kAu = 149597870.691;
  constexpr double kPi = 3.14159265358979323846;
  FixtureRun run;
  Report& r = run.report;
  r.checker_output =
      "Error704. Position Error on the line 9: The position error to the asteroid is "
      "1523.25 km, greater than 1000 km.\n";
  r.exit_status = 0;
  r.accepted = false;
  int line = 0;
  auto add_line = [&](const std::string& text) {
    run.solution += text + "\n";
    return ++line;
  };
  for (int s = 1; s <= ships; ++s) {
    ShipSummary ship;
    ship.ship = s;
    ship.launch_epoch = 64400.0 + 3.0 * s;
    ship.miners = 2;
    ship.resources = 35.5 + s;
    ship.thrust_phases = 3;
    const double t0 = ship.launch_epoch, t1 = t0 + 3000.0;
    const double phase = 0.37 * s;
    Trajectory trajectory;
    trajectory.ship = s;
    double mass = 2500.0;
    for (int k = 0; k < samples_per_ship; ++k) {
      const double u = static_cast<double>(k) / (samples_per_ship - 1);
      const double t = t0 + u * (t1 - t0);
      const double radius = (1.0 + 1.4 * u * u) * kAu;
      const double angle = phase + 2.0 * kPi * (t - t0) / (365.25 * (1.0 + 1.6 * u));
      const double thrust = std::fmod(u * 6.0, 1.0) < 0.4 ? 0.55 : 0.0;
      mass -= thrust * 0.02;
      TrajectoryPoint p{t,
                        {radius * std::cos(angle), radius * std::sin(angle), 0.01 * radius},
                        {-30.0 * std::sin(angle), 30.0 * std::cos(angle), 0.0},
                        mass,
                        thrust};
      trajectory.points.push_back(p);
    }
    const char* kinds[] = {"launch", "flyby", "rendezvous", "rendezvous", "drop"};
    const int bodies[] = {-3, -4, 1000 + s, 2000 + s, -3};
    for (int e = 0; e < 5; ++e) {
      const std::size_t index = static_cast<std::size_t>(e) * (trajectory.points.size() - 1) / 4;
      const TrajectoryPoint& p = trajectory.points[index];
      EventMark mark;
      mark.kind = kinds[e];
      mark.body_id = bodies[e];
      mark.epoch = p.epoch;
      for (int k = 0; k < 3; ++k) mark.r[k] = p.r[k];
      mark.mass = p.mass;
      char text[256];
      std::snprintf(text, sizeof text, "%d\t%d\t%.6f\t%.4f\t%.4f\t%.4f\t0\t0\t0\t%.3f", s,
                    bodies[e], p.epoch, p.r[0], p.r[1], p.r[2], p.mass);
      mark.line = add_line(text);
      add_line(text);
      if (e < 4) {
        for (int arc = 0; arc < 3; ++arc) {
          std::snprintf(text, sizeof text, "%d\t-1\t%.6f\t0.3\t0.2\t0.1", s, p.epoch + arc);
          add_line(text);
        }
      }
      ship.events.push_back(mark);
    }
    ship.final_mass = mass;
    ship.last_drop_epoch = ship.events.back().epoch;
    r.summary.per_ship.push_back(ship);
    if (samples_per_ship > 1) r.trajectories.push_back(std::move(trajectory));
  }
  r.summary.ships = ships;
  r.summary.mined_asteroids = static_cast<std::size_t>(2 * ships);
  r.summary.total_resource_mass = 36.0 * ships;

  const ShipSummary& first = r.summary.per_ship.front();
  Finding position;
  position.code = "Error704";
  position.message = r.checker_output;
  position.lines = {first.events[2].line, first.events[2].line + 1};
  position.ship = 1;
  position.quantity = "position error to the asteroid";
  position.value = 1523.25;
  position.limit = 1000.0;
  position.margin = -523.25;
  position.unit = "km";
  position.first = true;
  r.findings.push_back(position);
  Finding thrust;
  thrust.code = "Error401";
  thrust.message =
      "Error401. Thrust Magnitude Error on the line 14: The thrust magnitude is 0.7 N, "
      "greater than the maximum 0.6N.\n";
  thrust.lines = {first.events[3].line - 2};
  thrust.ship = 1;
  thrust.quantity = "thrust magnitude";
  thrust.value = 0.7;
  thrust.limit = 0.60000001;
  thrust.margin = -0.09999999;
  thrust.unit = "N";
  r.findings.push_back(thrust);

  Constraint c1{"rendezvous.position", "Error704", "position error to the asteroid", "km",
                "<=", 2ull * ships, 1, 1523.25, 1000.0, -523.25, position.lines[0], 1, false};
  Constraint c2{"arc.thrust", "Error401", "thrust magnitude", "N", "<=", 12ull * ships, 1, 0.7,
                0.60000001, -0.09999999, thrust.lines[0], 1, false};
  Constraint c3{"arc.sun_distance", "Error101", "distance from the Sun", "AU", ">=",
                1000ull * ships, 0, 0.98, 0.3, 0.68, 3, 2, true};
  Constraint c4{"launch.mass", "Error503", "launch mass", "kg", "<=", 0, 0, kNotANumber,
                kNotANumber, kNotANumber, 0, 0, true};
  r.constraints = {c1, c2, c3, c4};
  Warning w;
  w.kind = "nan-passes";
  w.message = "The epoch is NaN; the epoch tests pass it.";
  w.lines = {first.events[1].line};
  w.ship = 1;
  w.rule = "epoch.window";
  r.warnings.push_back(w);
  return run;
}

}  // namespace kavren::test
