#include "synth/scenarios.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <vector>

#include "astro/ephemeris.h"
#include "events/encounters.h"
#include "synth/lambert.h"
#include "synth/rng.h"
#include "synth/text.h"

namespace synth {
namespace {

constexpr double kDeg = 0.017453292519943295;

// Sidereal period of the Earth's Keplerian orbit, days: a ship leaving the Earth with
// the Earth's heliocentric speed shares it and meets the Earth again after each period.
double earth_period_days() {
  const double a = 149579151.285;
  return 2.0 * 3.14159265358979323846 * std::sqrt(a * a * a / 132712440018.0) / 86400.0;
}

// Excess velocity that turns the Earth's velocity by `angle` about the radial direction:
// the speed, hence the orbital period, stays the Earth's.
void resonant_vinf(double epoch, double angle, double* vinf) {
  double earth[6];
  int flag = 0;
  kavren::body_state(flag, earth, 0, epoch, nullptr);
  const double rn = std::sqrt(earth[0] * earth[0] + earth[1] * earth[1] + earth[2] * earth[2]);
  const double u[3] = {earth[0] / rn, earth[1] / rn, earth[2] / rn};
  const double* v = earth + 3;
  const double uxv[3] = {u[1] * v[2] - u[2] * v[1], u[2] * v[0] - u[0] * v[2],
                         u[0] * v[1] - u[1] * v[0]};
  const double udv = u[0] * v[0] + u[1] * v[1] + u[2] * v[2];
  const double c = std::cos(angle), s = std::sin(angle);
  for (int k = 0; k < 3; ++k) vinf[k] = v[k] * c + uxv[k] * s + u[k] * udv * (1.0 - c) - v[k];
}

// Zero-thrust phases packed into (from, to): the thrust dynamics run, the orbit does not
// change, so resonant ships still meet the Earth and their asteroids again.
// Offset from the previous event to the first phase, in days.
std::vector<Phase> idle_phases(double from, double to, int lines, int max_phases,
                               double offset = 0.25) {
  std::vector<Phase> phases;
  double start = from + offset;
  while (static_cast<int>(phases.size()) < max_phases && start + (lines - 1) <= to - 0.25) {
    Phase p;
    p.start = start;
    p.lines = lines;
    phases.push_back(p);
    start += lines - 1;
  }
  return phases;
}

struct Encounter {
  double epoch;
  int kind;  // 0 deploy, 1 collect, 2 Earth drop
  int slot;  // deploy: index into the pair's asteroid list; collect: asteroid slot
  double mass;
};

// Two ships launched together on the Earth's period. Each deploys `deploys` miners in the
// first period; each collects the other's asteroids, half after `k1` periods and half after
// `k2`, dropping at the Earth after each half.
struct PairPlan {
  double t0 = 64400.0;
  double angle = 8.0 * kDeg;
  int deploys = 10;
  double first_offset = 10.0;
  double spacing = 30.0;
  int k1 = 3, k2 = 4;
  double mass1 = 29.9, mass2 = 39.9;
  int idle_lines = 4;  // thrust lines per idle phase, 0 for pure coasts
  int idle_per_arc = 2;
  // Full-precision idle phases: the first starts 0.3 days after the event (an epoch no
  // short decimal holds) and each thrusts a random vector of at most this many newtons
  // per axis, too weak to move the ship off its resonant orbit.
  double idle_thrust = 0.0;
  Rng* idle_rng = nullptr;
  double launch_mass = 2000.0;
  // The last drop may also turn the excess velocity about the Earth's velocity by this
  // angle (0: no turn): the ship keeps the Earth's period and meets it again each period,
  // where `returns` more turning flybys follow.
  double final_turn = 0.0;
  int returns = 0;
  // After its last event the first ship of the pair flies a leg that really thrusts (this
  // many newtons along its velocity, then the engine's limit against it) and leaves one
  // more miner at an asteroid planted where the leg ends (0: no such leg).
  double tail_thrust = 0.0;
};

double norm3(const double* v) {
  return std::sqrt(v[0] * v[0] + v[1] * v[1] + v[2] * v[2]);
}

void body_state(int id, double t, double* rv) {
  int flag = 0;
  kavren::body_state(flag, rv, id, t, nullptr);  // planets need no catalogue
  if (flag == 0) throw std::runtime_error("no ephemeris");
}

// v turned by `angle` about the unit vector k (right-handed).
void rotate(const double* v, const double* k, double angle, double* out) {
  const double c = std::cos(angle), s = std::sin(angle);
  const double kxv[3] = {k[1] * v[2] - k[2] * v[1], k[2] * v[0] - k[0] * v[2],
                         k[0] * v[1] - k[1] * v[0]};
  const double kdv = k[0] * v[0] + k[1] * v[1] + k[2] * v[2];
  for (int j = 0; j < 3; ++j) out[j] = v[j] * c + kxv[j] * s + k[j] * kdv * (1.0 - c);
}

// Heliocentric velocity leaving a flyby of `body` at the reached state: the incoming
// excess velocity turned by `angle` about the planet's velocity. The excess speed stays,
// and so does the heliocentric speed, since the planet's velocity is the turning axis.
void turned_departure(const Builder& b, int body, double angle, double* vout) {
  double planet[6];
  body_state(body, b.reached_epoch(), planet);
  const double* v = b.reached_rv() + 3;
  const double vin[3] = {v[0] - planet[3], v[1] - planet[4], v[2] - planet[5]};
  const double n = norm3(planet + 3);
  const double axis[3] = {planet[3] / n, planet[4] / n, planet[5] / n};
  double turned[3];
  rotate(vin, axis, angle, turned);
  for (int k = 0; k < 3; ++k) vout[k] = planet[3 + k] + turned[k];
}

// Departure from a flyby of `from` at the reached state towards body `to`: the coast arc
// (two-body transfer) arriving between lo and hi days later whose departure excess speed
// equals the arrival's and whose turn stays within `turn_share` of the largest the planet
// allows. Returns the arrival epoch and writes the heliocentric departure velocity.
double matched_leg(const Builder& b, int from, int to, double lo, double hi, double turn_share,
                   double* vout) {
  const double t = b.reached_epoch();
  const double* ship = b.reached_rv();
  double planet[6];
  body_state(from, t, planet);
  const double vin[3] = {ship[3] - planet[3], ship[4] - planet[4], ship[5] - planet[5]};
  const double speed = norm3(vin);
  double v1[3], v2[3];
  // Excess-speed mismatch for an arrival `days` after the flyby (epochs as written).
  auto mismatch = [&](double days, double& arrival) {
    arrival = reparse(t + days);
    double target[6];
    body_state(to, arrival, target);
    if (!lambert(ship, target, (arrival - t) * 86400.0, v1, v2)) {
      throw std::runtime_error("no transfer arc");
    }
    const double out[3] = {v1[0] - planet[3], v1[1] - planet[4], v1[2] - planet[5]};
    return norm3(out) - speed;
  };
  double arrival = 0.0;
  double previous = mismatch(lo, arrival);
  for (double days = lo + 1.0; days <= hi; days += 1.0) {
    const double d = mismatch(days, arrival);
    if ((d < 0.0) == (previous < 0.0)) {
      previous = d;
      continue;
    }
    double a = days - 1.0, c = days, da = previous;
    previous = d;
    for (int k = 0; k < 80; ++k) {
      const double m = 0.5 * (a + c);
      const double dm = mismatch(m, arrival);
      if ((dm < 0.0) == (da < 0.0)) {
        a = m;
        da = dm;
      } else {
        c = m;
      }
    }
    const double residual = mismatch(c, arrival);
    const double out[3] = {v1[0] - planet[3], v1[1] - planet[4], v1[2] - planet[5]};
    double angle = 0.0, max_angle = 0.0;
    if (std::fabs(residual) <= 1e-6 && get_angle_2vinfs(from, vin, out, angle, max_angle) &&
        angle <= turn_share * max_angle) {
      for (int k = 0; k < 3; ++k) vout[k] = v1[k];
      return arrival;
    }
  }
  throw std::runtime_error("no matched transfer in the window");
}

std::vector<Phase> idle_phases_of(const PairPlan& plan, double from, double to) {
  if (plan.idle_lines < 2) return {};
  if (plan.idle_rng == nullptr) return idle_phases(from, to, plan.idle_lines, plan.idle_per_arc);
  std::vector<Phase> phases = idle_phases(from, to, plan.idle_lines, plan.idle_per_arc, 0.3);
  for (Phase& p : phases) {
    for (double& u : p.u) u = plan.idle_rng->uniform(-plan.idle_thrust, plan.idle_thrust);
  }
  return phases;
}

// A leg from `from` of two thrust phases, `magnitude` newtons along the velocity, then the
// engine's limit outwards from the Sun (last step half a day), ending in a deploy at a new
// asteroid.
void thrust_tail(Builder& b, double from, double magnitude) {
  const double* r = b.reached_rv();
  const double* v = r + 3;
  const double vn = norm3(v), rn = norm3(r);
  Phase p1;
  p1.start = from + 2.25;
  p1.lines = 20;
  for (int k = 0; k < 3; ++k) p1.u[k] = magnitude * v[k] / vn;
  Phase p2;
  p2.start = p1.start + p1.lines + 3.0;
  p2.lines = 8;
  p2.last_step = 0.5;
  for (int k = 0; k < 3; ++k) p2.u[k] = 0.6 * r[k] / rn;
  b.arc_to(p2.start + p2.lines + 10.0, {p1, p2});
  b.deploy();
}

void build_pair(Builder& b, const PairPlan& plan) {
  const double T = earth_period_days();
  double vinf[3];
  resonant_vinf(plan.t0, plan.angle, vinf);
  std::vector<int> asteroid_of[2];
  asteroid_of[0].assign(plan.deploys, 0);
  asteroid_of[1].assign(plan.deploys, 0);
  // Deploys of ship s at t0 + first_offset + s * spacing / 2 + j * spacing.
  auto deploy_epoch = [&](int s, int j) {
    return plan.t0 + plan.first_offset + s * plan.spacing / 2.0 + j * plan.spacing;
  };
  for (int s = 0; s < 2; ++s) {
    b.begin_ship();
    b.launch(plan.t0, vinf, plan.launch_mass);
    std::vector<Encounter> plan_events;
    for (int j = 0; j < plan.deploys; ++j) plan_events.push_back({deploy_epoch(s, j), 0, j, 0.0});
    const int other = 1 - s;
    for (int j = 0; j < plan.deploys; ++j) {
      const bool first_half = j < plan.deploys / 2;
      const int k = first_half ? plan.k1 : plan.k2;
      plan_events.push_back(
          {deploy_epoch(other, j) + k * T, 1, j, first_half ? plan.mass1 : plan.mass2});
    }
    plan_events.push_back({plan.t0 + (plan.k1 + 1) * T, 2, 0, 0.0});
    // Both halves collected after the same number of periods share one drop.
    if (plan.k2 != plan.k1) plan_events.push_back({plan.t0 + (plan.k2 + 1) * T, 2, 0, 0.0});
    std::sort(plan_events.begin(), plan_events.end(),
              [](const Encounter& x, const Encounter& y) { return x.epoch < y.epoch; });
    double previous = plan.t0;
    for (const Encounter& e : plan_events) {
      const std::vector<Phase> phases = idle_phases_of(plan, previous, e.epoch);
      b.arc_to(e.epoch, phases);
      if (e.kind == 0) {
        asteroid_of[s][e.slot] = b.deploy(asteroid_of[s][e.slot]);
      } else if (e.kind == 1) {
        // The first ship of the pair is written before its partner deploys: the
        // asteroid is planted here, on the shared orbit, and the partner meets it there
        // some periods earlier.
        int& id = asteroid_of[other][e.slot];
        if (id == 0) id = b.plant_here();
        b.collect(id, e.mass);
      } else if (e.epoch < plan_events.back().epoch || plan.final_turn == 0.0) {
        b.earth_drop();
      } else {
        double vout[3];
        turned_departure(b, -3, plan.final_turn, vout);
        b.flyby(-3, vout);
      }
      previous = e.epoch;
    }
    for (int k = 1; k <= plan.returns; ++k) {
      const double epoch = previous + T;
      b.arc_to(epoch, idle_phases_of(plan, previous, epoch));
      double vout[3];
      turned_departure(b, -3, plan.final_turn, vout);
      b.flyby(-3, vout);
      previous = epoch;
    }
    if (plan.tail_thrust > 0.0 && s == 0) thrust_tail(b, previous, plan.tail_thrust);
  }
}

// A ship touring the three planets on coasts: Earth, Venus, Earth, Mars, then on to an
// asteroid planted where it ends, leaving a miner there. Each flyby's departure arc is the
// transfer whose excess speed matches the arrival's.
void build_planet_tour(Builder& b, double t0, double to_venus) {
  b.begin_ship();
  double earth[6], venus[6];
  body_state(-3, t0, earth);
  body_state(-2, t0 + to_venus, venus);
  double v1[3], v2[3];
  if (!lambert(earth, venus, to_venus * 86400.0, v1, v2)) {
    throw std::runtime_error("no launch arc");
  }
  const double vinf[3] = {v1[0] - earth[3], v1[1] - earth[4], v1[2] - earth[5]};
  b.launch(t0, vinf, 1500.0);
  double t = t0 + to_venus;
  b.arc_to(t, idle_phases(t0, t, 4, 2));
  double vout[3];
  double next = matched_leg(b, -2, -3, 250.0, 350.0, 0.8, vout);
  b.flyby(-2, vout);
  b.arc_to(next, idle_phases(t, next, 5, 3));
  t = next;
  next = matched_leg(b, -3, -4, 150.0, 260.0, 0.8, vout);
  b.flyby(-3, vout);
  b.arc_to(next);  // a pure coast
  t = next;
  turned_departure(b, -4, 0.3, vout);
  b.flyby(-4, vout);
  next = t + 120.0;
  b.arc_to(next, idle_phases(t, next, 4, 1));
  b.deploy();
}

// A ship that really thrusts (up to 0.5 N) and then only leaves miners behind.
void build_thruster(Builder& b, double t0, Rng& rng) {
  b.begin_ship();
  double earth[6];
  int flag = 0;
  kavren::body_state(flag, earth, 0, t0, nullptr);
  const double vn = std::sqrt(earth[3] * earth[3] + earth[4] * earth[4] + earth[5] * earth[5]);
  const double vinf[3] = {3.0 * earth[3] / vn, 3.0 * earth[4] / vn, 3.0 * earth[5] / vn};
  b.launch(t0, vinf, 2800.0);
  double t = t0;
  for (int leg = 0; leg < 3; ++leg) {
    const double* v = b.reached_epoch() > 0.0 && leg > 0 ? b.reached_rv() + 3 : earth + 3;
    const double n = std::sqrt(v[0] * v[0] + v[1] * v[1] + v[2] * v[2]);
    const double magnitude = rng.uniform(0.2, 0.5);
    std::vector<Phase> phases;
    Phase p1;
    p1.start = t + 3.0;
    p1.lines = 10 + static_cast<int>(rng.next() % 10);
    for (int k = 0; k < 3; ++k) p1.u[k] = magnitude * v[k] / n;
    phases.push_back(p1);
    Phase p2;
    p2.start = p1.start + p1.lines + 4.0;
    p2.lines = 6;
    p2.last_step = 0.5;
    for (int k = 0; k < 3; ++k) p2.u[k] = -0.6 * v[k] / n;  // exactly the engine's limit
    phases.push_back(p2);
    t = p2.start + p2.lines + 8.0;
    b.arc_to(t, phases);
    b.deploy();
  }
}

}  // namespace

Scenario build_demo(Builder& b, std::uint64_t seed) {
  Rng rng(seed);
  PairPlan first;
  first.t0 = 64400.0 + std::floor(rng.uniform(0.0, 20.0));
  first.final_turn = 30.0 * kDeg;
  first.returns = 1;
  build_pair(b, first);
  PairPlan second;
  second.t0 = first.t0 + 20.5;
  second.angle = -10.0 * kDeg;
  second.first_offset = 12.0;
  second.idle_lines = 0;  // pure coasts between this pair's events
  build_pair(b, second);
  build_thruster(b, 64600.0, rng);
  return {"demo",
          "two resonant mining pairs (one turning at its last Earth drops and "
          "flying by the Earth again) and one thrusting ship"};
}

int suite_size() {
  return 5;
}

Scenario build_suite_case(Builder& b, int index) {
  Rng rng(1000 + index);
  switch (index) {
    case 0:
      return build_demo(b, 7);
    case 1: {
      PairPlan plan;
      plan.t0 = 65000.0;
      plan.angle = 11.0 * kDeg;  // about 5.7 km/s, near the launch limit
      plan.deploys = 20;         // the most miners a ship may use
      plan.spacing = 14.0;
      plan.idle_lines = 2;
      build_pair(b, plan);
      return {"full-miners", "one pair, 20 miners each, near-limit launch speed"};
    }
    case 2: {
      PairPlan plan;
      plan.t0 = 64328.0;  // the first day of the mission
      plan.k1 = 2;
      plan.k2 = 5;
      plan.mass1 = 19.9;
      plan.mass2 = 49.9;
      plan.idle_lines = 7;
      plan.idle_per_arc = 3;
      build_pair(b, plan);
      build_thruster(b, 64900.0, rng);
      return {"long-collections", "collections after two and five periods, and a thruster"};
    }
    case 4: {
      PairPlan plan;
      plan.t0 = 64500.0;
      plan.deploys = 20;
      plan.spacing = 14.0;
      plan.k1 = 4;
      plan.k2 = 5;
      plan.mass1 = 39.9;
      plan.mass2 = 49.9;
      plan.final_turn = -25.0 * kDeg;
      plan.returns = 2;
      build_pair(b, plan);
      build_planet_tour(b, 64700.0, 156.0);
      return {"flybys",
              "a pair turning at its last drops and flying by the Earth twice "
              "more, and a ship touring Venus, the Earth and Mars"};
    }
    case 3:
    default: {
      for (int pair = 0; pair < 3; ++pair) {
        PairPlan plan;
        plan.t0 = 64500.0 + 7.25 * pair;
        plan.angle = (pair % 2 == 0 ? 6.0 : -7.0) * kDeg;
        plan.deploys = 10;
        plan.idle_lines = pair == 1 ? 0 : 3;
        build_pair(b, plan);
      }
      return {"three-pairs", "six resonant ships"};
    }
  }
}

Scenario build_bench(Builder& b, int ships, std::uint64_t seed, bool full_precision, int tails) {
  Rng rng(seed);
  Rng thrust_rng(seed + 1);
  Rng tail_rng(seed + 2);
  const int pairs = ships / 2;
  for (int pair = 0; 2 * pair < ships; ++pair) {
    PairPlan plan;
    plan.t0 = 64330.0 + 3.0 * pair;
    plan.angle = (pair % 2 == 0 ? 1.0 : -1.0) * (5.0 + std::floor(rng.uniform(0.0, 5.0))) * kDeg;
    plan.deploys = 20;
    plan.first_offset = 5.0;
    plan.spacing = 14.0;
    plan.k1 = 5;
    plan.k2 = 5;
    plan.mass1 = 49.95;
    plan.mass2 = 49.95;
    plan.idle_lines = 5;
    plan.idle_per_arc = 1000;
    if (full_precision) {
      plan.idle_thrust = 1e-8;
      plan.idle_rng = &thrust_rng;
    }
    // Thrusting tails spread over the pairs; each such pair deploys one miner less, the
    // tail's deploy being its first ship's twentieth.
    if (tails > 0 && pair * std::min(tails, pairs) % pairs < std::min(tails, pairs)) {
      plan.deploys = 19;
      plan.tail_thrust = tail_rng.uniform(0.2, 0.5);
    }
    build_pair(b, plan);
  }
  if (tails > 0) {
    return {"bench-tails", std::to_string(ships) + " resonant ships with packed thrust tables, " +
                               std::to_string(std::min(tails, pairs)) +
                               " of them ending with a thrusting leg"};
  }
  return {"bench", std::to_string(ships) + " resonant ships with packed thrust tables"};
}

}  // namespace synth
