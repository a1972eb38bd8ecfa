// Cases for the launch, flyby and rendezvous checks. Each moves one event line (or both
// lines of one event) away from the state the valid solution gives it. The event checks
// run ship by ship before any burning arc is integrated, so the event message is the
// first, although the arc ending or starting at the changed line no longer fits either.
#include <cmath>
#include <fstream>
#include <iterator>
#include <memory>
#include <sstream>
#include <stdexcept>

#include "astro/ephemeris.h"
#include "support/error_case.h"
#include "support/e2e.h"

namespace kavren::test {
namespace {

// Token positions of an event line (0-based).
constexpr int kEpoch = 2;
constexpr int kX = 3;
constexpr int kVx = 6;
constexpr int kMass = 9;

constexpr int kLaunch = 0;
constexpr int kVenus = -2;
constexpr int kEarth = -3;
constexpr int kMars = -4;

const char* const kTimeDiffers =
    ": The time of two adjacent lines is different (exceeding the allowable error).";
const char* const kPositionDiffers =
    ": The position of two adjacent lines is different (exceeding the allowable error).";
const char* const kMassDiffers =
    ": The mass of two adjacent lines is different (exceeding the allowable error).";
const char* const kVelocityDiffers =
    ": The velocity of two adjacent lines is different (exceeding the allowable error).";

std::string read_all(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) throw std::runtime_error("cannot read " + path);
  return std::string((std::istreambuf_iterator<char>(in)), {});
}

// The flyby scenario of the synthesiser's suite (case 4): two resonant mining ships
// followed by a ship that flies by Venus, the Earth and Mars before one rendezvous.
const Scenario& flyby_scenario() {
  static const std::unique_ptr<Scenario> tour = [] {
    TempDir dir;
    const RunResult made =
        run_in(dir.path(), KAVREN_SYNTH_BIN, {"suite", dir.path() + "/suite"});
    if (made.status != 0) throw std::runtime_error("kavren-synth suite failed: " + made.err);
    auto scenario = std::make_unique<Scenario>();
    const std::string folder = dir.path() + "/suite/case4";
    scenario->catalogue = read_all(folder + "/KAVREN_Asteroids_Data.txt");
    std::istringstream result(read_all(folder + "/Result.txt"));
    std::string line;
    while (std::getline(result, line)) scenario->lines.push_back(line);
    return scenario;
  }();
  return *tour;
}

double token(const std::string& line, int k) {
  return std::stod(tokens_of(line).at(static_cast<std::size_t>(k)));
}

// Adds `delta` to token k of line i.
void shift(Scenario& s, int i, int k, double delta) {
  std::string& line = s.lines.at(static_cast<std::size_t>(i));
  line = with_token(line, k, number(token(line, k) + delta));
}

void set_token(Scenario& s, int i, int k, double value) {
  std::string& line = s.lines.at(static_cast<std::size_t>(i));
  line = with_token(line, k, number(value));
}

void set_velocity(Scenario& s, int i, const double* v) {
  for (int k = 0; k < 3; ++k) set_token(s, i, kVx + k, v[k]);
}

// The first line (0-based) of the n-th pair (0-based) with event ID `id` in the file.
int pair_line(const Scenario& s, int id, int n = 0) {
  int i = find_line(s.lines, id);
  for (int k = 0; k < n; ++k) i = find_line(s.lines, id, 10, i + 2);
  return i;
}

// The first line of the last pair with event ID `id` in the file.
int last_pair_line(const Scenario& s, int id) {
  for (int i = static_cast<int>(s.lines.size()) - 1; i > 0; --i) {
    const std::vector<std::string> tokens = tokens_of(s.lines[static_cast<std::size_t>(i)]);
    if (tokens.size() == 10 && std::stoi(tokens[1]) == id) return i - 1;
  }
  throw std::runtime_error("no line with event ID " + std::to_string(id));
}

// The whole outcome of a failed event check: one line naming the file line i (0-based).
Expectation event_failure(const std::string& code, const std::string& event, int i,
                          const std::string& suffix) {
  return Expectation{code + ". Data Error of the event of " + event + " on the line" +
                         std::to_string(i + 1) + suffix + "\n",
                     0, std::nullopt};
}

Expectation launch_failure(const std::string& code, int i, const std::string& suffix) {
  return event_failure(code, "launch", i, suffix);
}
Expectation flyby_failure(const std::string& code, int i, const std::string& suffix) {
  return event_failure(code, "flyby", i, suffix);
}
Expectation visit_failure(const std::string& code, int i, const std::string& suffix) {
  return event_failure(code, "rendezvous", i, suffix);
}

// Excess velocities of a flyby pair starting at line i: the ship's velocity on each
// line less the planet's velocity at the arrival epoch.
struct FlybyGeometry {
  double planet_v[3];
  double vin[3];
  double speed;  // |vin|, km/s
};

FlybyGeometry geometry(const Scenario& s, int i) {
  const std::string& line = s.lines.at(static_cast<std::size_t>(i));
  double planet[6] = {0.0, 0.0, 0.0, 0.0, 0.0, 0.0};
  int flag = 0;
  getrv_stats_asteroids(flag, planet, std::stoi(tokens_of(line).at(1)), token(line, kEpoch));
  if (flag != 1) throw std::runtime_error("no planet state for line " + std::to_string(i + 1));
  FlybyGeometry g{};
  for (int k = 0; k < 3; ++k) {
    g.planet_v[k] = planet[3 + k];
    g.vin[k] = token(line, kVx + k) - planet[3 + k];
  }
  g.speed = std::sqrt(g.vin[0] * g.vin[0] + g.vin[1] * g.vin[1] + g.vin[2] * g.vin[2]);
  return g;
}

// Leaves the flyby starting at line i with the excess velocity `vout` (planet frame).
void depart_with(Scenario& s, int i, const FlybyGeometry& g, const double* vout) {
  const double v[3] = {g.planet_v[0] + vout[0], g.planet_v[1] + vout[1],
                       g.planet_v[2] + vout[2]};
  set_velocity(s, i + 1, v);
}

// Leaves the flyby at line i with the incoming excess velocity stretched to speed + delta.
void change_excess_speed(Scenario& s, int i, double delta) {
  const FlybyGeometry g = geometry(s, i);
  const double scale = (g.speed + delta) / g.speed;
  const double vout[3] = {g.vin[0] * scale, g.vin[1] * scale, g.vin[2] * scale};
  depart_with(s, i, g, vout);
}

// Largest turn of a pass at the planet's minimum radius, from its constants.
double max_turn(int body, double speed) {
  const double mu = body == kMars ? 42828.375214 : body == kEarth ? 398600.435436 : 324858.592;
  const double rp = body == kMars ? 3689.0 : body == kEarth ? 6678.0 : 6351.0;
  return 2.0 * std::asin(mu / (speed * speed * rp + mu));
}

// Leaves the flyby at line i with the incoming excess velocity turned by `angle` (rad)
// about an axis normal to it; the excess speed stays.
void turn_excess_velocity(Scenario& s, int i, double angle) {
  const FlybyGeometry g = geometry(s, i);
  const double* a = g.vin;
  // Axis: vin x z, normalised (no excess velocity here points along the ecliptic pole).
  double k[3] = {a[1], -a[0], 0.0};
  const double kn = std::sqrt(k[0] * k[0] + k[1] * k[1]);
  for (double& c : k) c /= kn;
  const double kxa[3] = {k[1] * a[2] - k[2] * a[1], k[2] * a[0] - k[0] * a[2],
                         k[0] * a[1] - k[1] * a[0]};
  double vout[3];
  for (int j = 0; j < 3; ++j) vout[j] = a[j] * std::cos(angle) + kxa[j] * std::sin(angle);
  depart_with(s, i, g, vout);
}

void add_launch_cases(std::vector<ErrorCase>& cases) {
  // The demo's first ship departs on lines 1 and 2 (indices 0 and 1).
  cases.push_back({"Error501_LaunchSecondEpoch", "Error501", [](Scenario& s) {
                     const int i = pair_line(s, kLaunch);
                     shift(s, i + 1, kEpoch, 0.001);
                     return launch_failure("Error501", i + 1, kTimeDiffers);
                   }});
  // Whichever line holds the wrong epoch, the second line is named.
  cases.push_back({"Error501_LaunchFirstEpoch", "Error501", [](Scenario& s) {
                     const int i = pair_line(s, kLaunch);
                     shift(s, i, kEpoch, -0.5);
                     return launch_failure("Error501", i + 1, kTimeDiffers);
                   }});
  // The second ship's launch fails after the first ship passed all its checks.
  cases.push_back({"Error501_SecondShipLaunchEpoch", "Error501", [](Scenario& s) {
                     const int i = pair_line(s, kLaunch, 1);
                     shift(s, i + 1, kEpoch, 1e-6);
                     return launch_failure("Error501", i + 1, kTimeDiffers);
                   }});
  cases.push_back({"Error502_LaunchSecondPosition", "Error502", [](Scenario& s) {
                     const int i = pair_line(s, kLaunch);
                     shift(s, i + 1, kX, 1500.0);
                     return launch_failure("Error502", i + 1, kPositionDiffers);
                   }});
  cases.push_back({"Error503_LaunchSecondMass", "Error503", [](Scenario& s) {
                     const int i = pair_line(s, kLaunch);
                     shift(s, i + 1, kMass, 0.5);
                     return launch_failure("Error503", i + 1, kMassDiffers);
                   }});
  cases.push_back({"Error504_LaunchMassAboveLimit", "Error504", [](Scenario& s) {
                     const int i = pair_line(s, kLaunch);
                     set_token(s, i, kMass, 3000.0001);
                     set_token(s, i + 1, kMass, 3000.0001);
                     return launch_failure(
                         "Error504", i,
                         ": Initial mass of Mining Ship is greater than the limit value.");
                   }});
  cases.push_back({"Error505_LaunchSpeedJump", "Error505", [](Scenario& s) {
                     const int i = pair_line(s, kLaunch);
                     const double v[3] = {token(s.lines[i], kVx) + 6.0011,
                                          token(s.lines[i], kVx + 1),
                                          token(s.lines[i], kVx + 2)};
                     set_velocity(s, i + 1, v);
                     return launch_failure(
                         "Error505", i,
                         ": The hyperbolic excess velocity of the ship relative to the Earth "
                         "should not be larger than 6.0 km/s  at the moment of launch.");
                   }});
  // Both lines moved together: they still agree, but neither is at the Earth.
  cases.push_back({"Error506_LaunchBothPositions", "Error506", [](Scenario& s) {
                     const int i = pair_line(s, kLaunch);
                     shift(s, i, kX, 1500.0);
                     shift(s, i + 1, kX, 1500.0);
                     return launch_failure(
                         "Error506", i,
                         ": The position error with the Earth exceeds the allowable range.");
                   }});
  // First line 500 km off, second 1200 km: the lines agree within 700 km.
  cases.push_back({"Error506_LaunchSecondPosition", "Error506", [](Scenario& s) {
                     const int i = pair_line(s, kLaunch);
                     shift(s, i, kX, 500.0);
                     shift(s, i + 1, kX, 1200.0);
                     return launch_failure(
                         "Error506", i + 1,
                         ": The position error with the Earth exceeds the allowable range.");
                   }});
  cases.push_back({"Error507_LaunchFirstVelocity", "Error507", [](Scenario& s) {
                     const int i = pair_line(s, kLaunch);
                     shift(s, i, kVx + 1, 0.01);
                     return launch_failure(
                         "Error507", i,
                         ": The velocity error with the Earth exceeds the allowable range.");
                   }});
}

void add_flyby_cases(std::vector<ErrorCase>& cases) {
  // The demo's first Earth flyby drops 149.5 kg of resources; the mass may change there.
  cases.push_back({"Error601_EarthFlybySecondEpoch", "Error601", [](Scenario& s) {
                     const int i = pair_line(s, kEarth);
                     shift(s, i + 1, kEpoch, 0.001);
                     return flyby_failure("Error601", i + 1, kTimeDiffers);
                   }});
  cases.push_back({"Error601_MarsFlybySecondEpoch", "Error601", [](Scenario& s) {
                     s = flyby_scenario();
                     const int i = pair_line(s, kMars);
                     shift(s, i + 1, kEpoch, 1e-6);
                     return flyby_failure("Error601", i + 1, kTimeDiffers);
                   }});
  cases.push_back({"Error602_EarthFlybySecondPosition", "Error602", [](Scenario& s) {
                     const int i = pair_line(s, kEarth);
                     shift(s, i + 1, kX + 1, -1500.0);
                     return flyby_failure("Error602", i + 1, kPositionDiffers);
                   }});
  cases.push_back({"Error602_VenusFlybySecondPosition", "Error602", [](Scenario& s) {
                     s = flyby_scenario();
                     const int i = pair_line(s, kVenus);
                     shift(s, i + 1, kX + 2, 1500.0);
                     return flyby_failure("Error602", i + 1, kPositionDiffers);
                   }});
  cases.push_back({"Error603_VenusFlybySecondMass", "Error603", [](Scenario& s) {
                     s = flyby_scenario();
                     const int i = pair_line(s, kVenus);
                     shift(s, i + 1, kMass, -1.0);
                     return flyby_failure("Error603", i + 1, kMassDiffers);
                   }});
  cases.push_back({"Error603_MarsFlybySecondMass", "Error603", [](Scenario& s) {
                     s = flyby_scenario();
                     const int i = pair_line(s, kMars);
                     shift(s, i + 1, kMass, 0.002);
                     return flyby_failure("Error603", i + 1, kMassDiffers);
                   }});
  const char* const away =
      ": The position error with the flyby planet exceeds the allowable range.";
  cases.push_back({"Error604_EarthFlybyBothPositions", "Error604", [away](Scenario& s) {
                     const int i = pair_line(s, kEarth);
                     shift(s, i, kX, 1500.0);
                     shift(s, i + 1, kX, 1500.0);
                     return flyby_failure("Error604", i, away);
                   }});
  cases.push_back({"Error604_EarthFlybySecondPosition", "Error604", [away](Scenario& s) {
                     const int i = pair_line(s, kEarth);
                     shift(s, i, kX, -500.0);
                     shift(s, i + 1, kX, -1200.0);
                     return flyby_failure("Error604", i + 1, away);
                   }});
  cases.push_back({"Error604_MarsFlybySecondPosition", "Error604", [away](Scenario& s) {
                     s = flyby_scenario();
                     const int i = pair_line(s, kMars);
                     shift(s, i, kX + 1, 400.0);
                     shift(s, i + 1, kX + 1, 1300.0);
                     return flyby_failure("Error604", i + 1, away);
                   }});
  cases.push_back({"Error604_VenusFlybyBothPositions", "Error604", [away](Scenario& s) {
                     s = flyby_scenario();
                     const int i = pair_line(s, kVenus);
                     shift(s, i, kX + 2, -2000.0);
                     shift(s, i + 1, kX + 2, -2000.0);
                     return flyby_failure("Error604", i, away);
                   }});
  const char* const speeds = ": The magnitudes of the hyperbolic excess velocity before and "
                             "after the flyby are different.";
  cases.push_back({"Error607_EarthFlybyFaster", "Error607", [speeds](Scenario& s) {
                     const int i = pair_line(s, kEarth);
                     change_excess_speed(s, i, 0.0011);
                     return flyby_failure("Error607", i, speeds);
                   }});
  // At the turning Earth flyby, where the ship keeps its mass.
  cases.push_back({"Error607_TurningEarthFlybySlower", "Error607", [speeds](Scenario& s) {
                     const int i = pair_line(s, kEarth, 2);
                     change_excess_speed(s, i, -0.01);
                     return flyby_failure("Error607", i, speeds);
                   }});
  cases.push_back({"Error607_VenusFlybySlower", "Error607", [speeds](Scenario& s) {
                     s = flyby_scenario();
                     const int i = pair_line(s, kVenus);
                     change_excess_speed(s, i, -0.0011);
                     return flyby_failure("Error607", i, speeds);
                   }});
  const char* const turn = ": The direction change angle of the flyby exceeded the maximum value.";
  // The excess velocity reversed: the same speed, a turn of half a revolution.
  cases.push_back({"Error605_EarthFlybyReversed", "Error605", [turn](Scenario& s) {
                     const int i = pair_line(s, kEarth);
                     const FlybyGeometry g = geometry(s, i);
                     const double vout[3] = {-g.vin[0], -g.vin[1], -g.vin[2]};
                     depart_with(s, i, g, vout);
                     return flyby_failure("Error605", i, turn);
                   }});
  // A turn 1% beyond what a pass at the planet's minimum radius allows, at each planet of
  // the touring ship (the last Venus, Earth and Mars pairs of the file are its own).
  for (const int body : {kVenus, kEarth, kMars}) {
    const std::string planet = body == kVenus ? "Venus" : body == kEarth ? "Earth" : "Mars";
    cases.push_back({"Error605_" + planet + "FlybyTurnAboveMaximum", "Error605",
                     [turn, body](Scenario& s) {
                       s = flyby_scenario();
                       const int i = last_pair_line(s, body);
                       const double speed = geometry(s, i).speed;
                       turn_excess_velocity(s, i, 1.01 * max_turn(body, speed));
                       return flyby_failure("Error605", i, turn);
                     }});
  }
}

void add_visit_cases(std::vector<ErrorCase>& cases) {
  // The demo's first rendezvous (asteroid 975, a miner left) is on lines 15 and 16.
  constexpr int asteroid = 975;
  cases.push_back({"Error701_VisitSecondEpoch", "Error701", [](Scenario& s) {
                     const int i = pair_line(s, asteroid);
                     shift(s, i + 1, kEpoch, 0.001);
                     return visit_failure("Error701", i + 1, kTimeDiffers);
                   }});
  cases.push_back({"Error701_VisitFirstEpoch", "Error701", [](Scenario& s) {
                     const int i = pair_line(s, asteroid);
                     shift(s, i, kEpoch, -2e-8);
                     return visit_failure("Error701", i + 1, kTimeDiffers);
                   }});
  cases.push_back({"Error702_VisitSecondPosition", "Error702", [](Scenario& s) {
                     const int i = pair_line(s, asteroid);
                     shift(s, i + 1, kX, 1000.5);
                     return visit_failure("Error702", i + 1, kPositionDiffers);
                   }});
  cases.push_back({"Error703_VisitSecondVelocity", "Error703", [](Scenario& s) {
                     const int i = pair_line(s, asteroid);
                     shift(s, i + 1, kVx + 2, 0.0015);
                     return visit_failure("Error703", i + 1, kVelocityDiffers);
                   }});
  const char* const away = ": The position error with the asteroid exceeds the allowable range.";
  const char* const drift = ": The velocity error with the asteroid exceeds the allowable range.";
  cases.push_back({"Error704_VisitBothPositions", "Error704", [away](Scenario& s) {
                     const int i = pair_line(s, asteroid);
                     shift(s, i, kX + 1, 1500.0);
                     shift(s, i + 1, kX + 1, 1500.0);
                     return visit_failure("Error704", i, away);
                   }});
  cases.push_back({"Error704_VisitSecondPosition", "Error704", [away](Scenario& s) {
                     const int i = pair_line(s, asteroid);
                     shift(s, i, kX, 500.0);
                     shift(s, i + 1, kX, 1200.0);
                     return visit_failure("Error704", i + 1, away);
                   }});
  // A collection visit of the second ship, where the ship takes resources on board.
  cases.push_back({"Error704_CollectionVisitBothPositions", "Error704", [away](Scenario& s) {
                     const int i = pair_line(s, asteroid, 1);
                     shift(s, i, kX + 2, -1001.0);
                     shift(s, i + 1, kX + 2, -1001.0);
                     return visit_failure("Error704", i, away);
                   }});
  cases.push_back({"Error705_VisitBothVelocities", "Error705", [drift](Scenario& s) {
                     const int i = pair_line(s, asteroid);
                     shift(s, i, kVx, 0.0015);
                     shift(s, i + 1, kVx, 0.0015);
                     return visit_failure("Error705", i, drift);
                   }});
  // First line 0.0004 km/s off, second 0.0013 km/s: the lines agree within 0.0009.
  cases.push_back({"Error705_VisitSecondVelocity", "Error705", [drift](Scenario& s) {
                     const int i = pair_line(s, asteroid);
                     shift(s, i, kVx + 1, 0.0004);
                     shift(s, i + 1, kVx + 1, 0.0013);
                     return visit_failure("Error705", i + 1, drift);
                   }});
  // The Mars-touring ship's rendezvous, after its three flybys passed.
  cases.push_back({"Error705_TouringShipVisitVelocities", "Error705", [drift](Scenario& s) {
                     s = flyby_scenario();
                     const int i = static_cast<int>(s.lines.size()) - 2;
                     shift(s, i, kVx + 2, -0.002);
                     shift(s, i + 1, kVx + 2, -0.002);
                     return visit_failure("Error705", i, drift);
                   }});
}

// Values at the passing side of a limit, shown by a later failure of the same ship: had
// the limit been applied strictly, the earlier check would have spoken first.
void add_limit_cases(std::vector<ErrorCase>& cases) {
  cases.push_back({"Error701_AfterLaunchMassAtLimit", "Error701", [](Scenario& s) {
                     const int i = pair_line(s, kLaunch);
                     set_token(s, i, kMass, 3000.0);
                     set_token(s, i + 1, kMass, 3000.0);
                     const int v = pair_line(s, 975);
                     shift(s, v + 1, kEpoch, 0.001);
                     return visit_failure("Error701", v + 1, kTimeDiffers);
                   }});
  // A departure speed of 6.0005 km/s passes although the message speaks of 6.0 km/s.
  cases.push_back({"Error701_AfterLaunchSpeedWithinMargin", "Error701", [](Scenario& s) {
                     const int i = pair_line(s, kLaunch);
                     const double v[3] = {token(s.lines[i], kVx),
                                          token(s.lines[i], kVx + 1) - 6.0005,
                                          token(s.lines[i], kVx + 2)};
                     set_velocity(s, i + 1, v);
                     const int r = pair_line(s, 975);
                     shift(s, r + 1, kEpoch, 0.001);
                     return visit_failure("Error701", r + 1, kTimeDiffers);
                   }});
  // The flyby's excess speed grows by 0.0009 km/s, within the tolerance.
  cases.push_back({"Error701_AfterFlybySpeedWithinTolerance", "Error701", [](Scenario& s) {
                     change_excess_speed(s, pair_line(s, kEarth), 0.0009);
                     const int r = pair_line(s, 975);
                     shift(s, r + 1, kEpoch, 0.001);
                     return visit_failure("Error701", r + 1, kTimeDiffers);
                   }});
  // A ship 999.9 km from the asteroid on both lines passes; the next visit fails.
  cases.push_back({"Error703_AfterVisitWithin1000km", "Error703", [](Scenario& s) {
                     const int first = pair_line(s, 975);
                     shift(s, first, kX, 999.9);
                     shift(s, first + 1, kX, 999.9);
                     const int next = pair_line(s, 976);
                     shift(s, next + 1, kVx, -0.0011);
                     return visit_failure("Error703", next + 1, kVelocityDiffers);
                   }});
}

// Two faults in one ship: the order of the checks decides which is reported.
void add_order_cases(std::vector<ErrorCase>& cases) {
  // The Earth distances of both lines are tested before the velocity of the first.
  cases.push_back({"Error506_SecondPositionBeforeFirstVelocity", "Error506", [](Scenario& s) {
                     const int i = pair_line(s, kLaunch);
                     shift(s, i, kVx, 0.01);
                     shift(s, i, kX, 300.0);
                     shift(s, i + 1, kX, 1200.0);
                     return launch_failure(
                         "Error506", i + 1,
                         ": The position error with the Earth exceeds the allowable range.");
                   }});
  // A reversed pass that also speeds up: the speed test comes before the turn test.
  cases.push_back({"Error607_ReversedAndFaster", "Error607", [](Scenario& s) {
                     const int i = pair_line(s, kEarth);
                     const FlybyGeometry g = geometry(s, i);
                     const double scale = -(g.speed + 0.5) / g.speed;
                     const double vout[3] = {g.vin[0] * scale, g.vin[1] * scale,
                                             g.vin[2] * scale};
                     depart_with(s, i, g, vout);
                     return flyby_failure("Error607", i,
                                          ": The magnitudes of the hyperbolic excess velocity "
                                          "before and after the flyby are different.");
                   }});
  // Every flyby of a ship is checked before its rendezvous, even one later in the file.
  cases.push_back({"Error601_FlybyBeforeEarlierVisit", "Error601", [](Scenario& s) {
                     const int visit = pair_line(s, 975);
                     shift(s, visit + 1, kEpoch, 0.001);
                     const int flyby = pair_line(s, kEarth);
                     shift(s, flyby + 1, kEpoch, 0.001);
                     return flyby_failure("Error601", flyby + 1, kTimeDiffers);
                   }});
  // The asteroid distances of both lines are tested before the velocity of the first.
  cases.push_back({"Error704_SecondPositionBeforeFirstVelocity", "Error704", [](Scenario& s) {
                     const int i = pair_line(s, 976);
                     shift(s, i, kVx + 1, 0.002);
                     shift(s, i + 1, kVx + 1, 0.002);
                     shift(s, i, kX + 2, 300.0);
                     shift(s, i + 1, kX + 2, 1200.0);
                     return visit_failure(
                         "Error704", i + 1,
                         ": The position error with the asteroid exceeds the allowable range.");
                   }});
}

}  // namespace

std::vector<ErrorCase> event_error_cases() {
  std::vector<ErrorCase> cases;
  add_launch_cases(cases);
  add_flyby_cases(cases);
  add_visit_cases(cases);
  add_limit_cases(cases);
  add_order_cases(cases);
  return cases;
}

}  // namespace kavren::test
