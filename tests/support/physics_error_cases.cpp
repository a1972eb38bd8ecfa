// Cases for the ship-level mining checks, the mining ledger, the burning arcs, the ship
// count and the score file.
//
// The demo's arcs end exactly on the states that integrating them gives (the demo is
// flown, not guessed), so moving an end state by a chosen amount makes the printed error
// that amount. Line numbers in the messages are 1-based file lines.
#include <sys/stat.h>

#include <cmath>
#include <stdexcept>
#include <string>

#include "support/error_case.h"

namespace kavren::test {
namespace {

// --- Line editing (n is the 1-based file line) -------------------------------------

std::string& line_at(Scenario& s, int n) {
  return s.lines.at(static_cast<std::size_t>(n - 1));
}

double value_at(const Scenario& s, int n, int k) {
  return std::stod(
      tokens_of(s.lines.at(static_cast<std::size_t>(n - 1))).at(static_cast<std::size_t>(k)));
}

void set_token(Scenario& s, int n, int k, const std::string& value) {
  line_at(s, n) = with_token(line_at(s, n), k, value);
}

void set_epoch(Scenario& s, int n, double epoch) {
  set_token(s, n, 2, number(epoch));
}

void set_thrust(Scenario& s, int n, double ux, double uy, double uz) {
  set_token(s, n, 3, number(ux));
  set_token(s, n, 4, number(uy));
  set_token(s, n, 5, number(uz));
}

// Event lines: mass is token 9, velocity tokens 6..8.
void set_mass(Scenario& s, int n, double mass) {
  set_token(s, n, 9, number(mass));
}

// 1-based line of the first line of the event pair with this event ID, from `from_line` on.
int event_line(const Scenario& s, int id, int from_line = 1) {
  return find_line(s.lines, id, 10, from_line - 1) + 1;
}

void require(bool condition, const char* what) {
  if (!condition) throw std::runtime_error(std::string("demo layout changed: ") + what);
}

// Ship 1 leaves its launch pair (lines 1, 2) on an arc of twelve zero-thrust lines,
// lines 3..14, before meeting its first asteroid on line 15: two idle phases,
//   3 T, 4 T, 5 T+1, 6 T+2, 7 T+3, 8 T+3   and   9 U, 10 U, 11 U+1, 12 U+2, 13 U+3, 14 U+3
// with T = 64411.25 and U = T+3. It is the first arc the program checks.
constexpr int kIdleFirst = 3;
constexpr double kIdleT = 64411.25;

void require_idle_arc(const Scenario& s) {
  require(event_line(s, 0) == 1 && event_line(s, 975) == 15, "ship 1's first arc");
  const double expected[12] = {0, 0, 1, 2, 3, 3, 3, 3, 4, 5, 6, 6};
  for (int j = 0; j < 12; ++j) {
    require(value_at(s, kIdleFirst + j, 2) == kIdleT + expected[j], "ship 1's idle phases");
  }
}

// --- Messages ---------------------------------------------------------------------

std::string line_no(int line) {
  return std::to_string(line);
}

std::string a_file_format(const char* code, int line, const char* what) {
  return std::string(code) + ". File Format Error on the line " + line_no(line) + ": " + what +
         "\n";
}
std::string missing_first(int line) {
  return a_file_format("ErrorA03", line, "Missing the first line of the burning arc.");
}
std::string first_not_zero(int line) {
  return a_file_format("ErrorA04", line,
                       "The thrust magnitude of the first line of the burning arc is not 0.");
}
std::string missing_last(int line) {
  return a_file_format("ErrorA05", line, "Missing the last line of the burning arc.");
}
std::string last_not_zero(int line) {
  return a_file_format("ErrorA06", line,
                       "The thrust magnitude of the last line of the burning arc is not 0.");
}
std::string interval(const char* code, int line, const char* what) {
  return std::string(code) + ". Thrust Epoch Error between line " + line_no(line) + " and line " +
         line_no(line + 1) + ": The time interval is " + what + "\n";
}
std::string too_much_thrust(int line, const std::string& magnitude) {
  return "Error401. Thrust Magnitude Error on the line " + line_no(line) +
         ": The thrust magnitude is " + magnitude + " N, greater than the maximum 0.6N.\n";
}
std::string phase_too_early(int line, const std::string& epoch) {
  return "Error003. Event Time Error on the line " + line_no(line) +
         ": The start epoch of the burning arc is " + epoch +
         "(MJD), earlier than the end epoch of the previous event (or burning arc).\n";
}
std::string arc_too_late(int line, const std::string& epoch) {
  return "Error004. Event Time Error on the line " + line_no(line) +
         ": The end epoch of the burning arc is " + epoch +
         "(MJD), later than the start epoch of the subsequent event.\n";
}
std::string sun_too_close(int a, int b) {
  return "Error101. Position Error between line " + line_no(a) + " and line " + line_no(b) +
         ": The distance to the Sun of the mining ship is less than 0.3 AU.\n";
}
std::string mismatch(const char* code, const char* kind, int line, const std::string& what,
                     const char* unit, const char* limit) {
  return std::string(code) + ". " + kind + " Error on the line " + line_no(line) + ": The " + what +
         " error between the integral state from the previous event and the state shown in "
         "the file is " +
         unit + ", greater than the constraint " + limit + ".\n";
}
std::string mining(const char* code, int line, const char* what) {
  return std::string(code) + ". Mining Data Error on the line" + line_no(line) + ": " + what + "\n";
}
constexpr const char* kUnbalanced =
    "The mass of resources unloaded on the Earth should be equal to the total mass of "
    "resources carried by the ship.";
constexpr const char* kTooSoon =
    "The time interval between two rendezvous should not be shorter than one year.";
constexpr const char* kNotAMiner =
    "The mass change of the Mining Ship does not match the mass of the miner on the first "
    "rendezvous to the asteroid (exceeding the allowable error).";
constexpr const char* kThirdVisit = "The asteroid is rendezvous more than twice.";

Expectation exits(std::string out, int status) {
  return Expectation{std::move(out), status, std::nullopt};
}

// --- Case families ----------------------------------------------------------------

void thrust_table_cases(std::vector<ErrorCase>& cases) {
  cases.push_back({"ErrorA03_PhaseOpensWithDifferentEpochs", "ErrorA03.", [](Scenario& s) {
                     require_idle_arc(s);
                     set_epoch(s, 4, kIdleT + 0.25);  // the opening pair no longer shares T
                     return exits(missing_first(3), 0);
                   }});
  cases.push_back({"ErrorA03_OneLineLeftAfterClosedPhase", "ErrorA03.", [](Scenario& s) {
                     // Line 13 at U+2 closes the second phase one line early; line 14 is
                     // left alone and cannot open a phase.
                     require_idle_arc(s);
                     set_epoch(s, 13, kIdleT + 5);
                     return exits(missing_first(14), 0);
                   }});
  cases.push_back({"ErrorA04_OpeningLineThrusts", "ErrorA04", [](Scenario& s) {
                     require_idle_arc(s);
                     set_thrust(s, 9, 0.1, 0.0, 0.0);
                     return exits(first_not_zero(9), 0);
                   }});
  cases.push_back({"ErrorA05_ShortStepInMidPhase", "ErrorA05", [](Scenario& s) {
                     // 4 -> 5 is half a day, so 5 -> 6 must close the phase; it is 1.5 days.
                     require_idle_arc(s);
                     set_epoch(s, 5, kIdleT + 0.5);
                     return exits(missing_last(5), 0);
                   }});
  cases.push_back({"ErrorA05_ArcEndsInsidePhase", "ErrorA05", [](Scenario& s) {
                     // The closing line becomes a regular thrust line a day later.
                     require_idle_arc(s);
                     set_epoch(s, 14, kIdleT + 7);
                     return exits(missing_last(14), 0);
                   }});
  cases.push_back({"ErrorA06_ClosingLineThrusts", "ErrorA06", [](Scenario& s) {
                     // Ship 5's first arc ends its second phase with a half-day step to
                     // line 762 and the zero line 763 at the same epoch.
                     const int closing = event_line(s, 1015) - 1;
                     require(closing == 763 && value_at(s, 762, 2) == value_at(s, 763, 2) &&
                                 value_at(s, 762, 2) - value_at(s, 761, 2) == 0.5,
                             "ship 5's first arc");
                     set_thrust(s, closing, value_at(s, 762, 3), value_at(s, 762, 4),
                                value_at(s, 762, 5));
                     return exits(last_not_zero(762), 0);
                   }});
  cases.push_back({"ErrorA07_EpochGoesBack", "ErrorA07", [](Scenario& s) {
                     require_idle_arc(s);
                     set_epoch(s, 5, kIdleT - 0.25);
                     return exits(interval("ErrorA07", 4, "less than 0."), 0);
                   }});
  cases.push_back({"ErrorA08_StepLongerThanADay", "ErrorA08", [](Scenario& s) {
                     require_idle_arc(s);
                     set_epoch(s, 5, kIdleT + 1.5);
                     return exits(interval("ErrorA08", 4, "greater than 1 day."), 0);
                   }});
  cases.push_back({"Error401_FirstLineOfArc", "Error401", [](Scenario& s) {
                     require_idle_arc(s);
                     set_thrust(s, 3, 0.48, 0.64, 0.0);  // |u| = 0.8 N
                     return exits(too_much_thrust(3, "0.8"), 0);
                   }});
  cases.push_back({"Error401_ThrustLineInPhase", "Error401", [](Scenario& s) {
                     require_idle_arc(s);
                     set_thrust(s, 4, 0.0, -0.48, 0.64);
                     return exits(too_much_thrust(4, "0.8"), 0);
                   }});
  cases.push_back({"Error401_JustAboveTheAllowance", "Error401", [](Scenario& s) {
                     // 0.6000001 N exceeds the 1e-8 N allowance and prints as 0.6.
                     const int first_arc_line = event_line(s, 0, 741) + 2;
                     require(first_arc_line == 743, "ship 5's first arc");
                     set_thrust(s, 745, 0.0, 0.6000001, 0.0);
                     return exits(too_much_thrust(745, "0.6"), 0);
                   }});
}

void arc_timing_cases(std::vector<ErrorCase>& cases) {
  cases.push_back({"Error003_PhaseBeforeLaunch", "Error003", [](Scenario& s) {
                     // The first phase moved to start half a day before the launch (64411).
                     require_idle_arc(s);
                     const double shift[6] = {0, 0, 1, 2, 3, 3};
                     for (int j = 0; j < 6; ++j) set_epoch(s, 3 + j, 64410.5 + shift[j]);
                     return exits(phase_too_early(3, "64410.5"), 0);
                   }});
  cases.push_back({"Error003_PhaseOverlapsPreviousPhase", "Error003", [](Scenario& s) {
                     // The first phase thrusts until T+3; the second now starts at T+2.25.
                     require_idle_arc(s);
                     const double shift[6] = {0, 0, 1, 2, 3, 3};
                     for (int j = 0; j < 6; ++j) set_epoch(s, 9 + j, 64413.5 + shift[j]);
                     return exits(phase_too_early(9, "64413.5"), 0);
                   }});
  cases.push_back({"Error004_PhaseEndsAfterNextEvent", "Error004", [](Scenario& s) {
                     // The second phase moved four days on: it thrusts until 64421.25, after
                     // the rendezvous on line 15 at 64421.
                     require_idle_arc(s);
                     require(value_at(s, 15, 2) == 64421.0, "ship 1's first rendezvous");
                     for (int j = 0; j < 6; ++j) set_epoch(s, 9 + j, value_at(s, 9 + j, 2) + 4.0);
                     return exits(arc_too_late(14, "64421"), 0);
                   }});
}

void arc_state_cases(std::vector<ErrorCase>& cases) {
  cases.push_back({"Error101_ShipBrakedIntoTheSun", "Error101", [](Scenario& s) {
                     // A sixth ship of 3.3 kg leaves the Earth with ship 5's launch and
                     // brakes for one day at 0.59 N against its 32.7 km/s: about 19.6 km/s
                     // of the rocket equation (39.2 km/s * ln(3.3/2.0)). Its perihelion
                     // falls to about 0.1 AU, reached some seventy days later, long before
                     // its Earth flyby (ship 1's first drop epoch). The run stops in the
                     // coast after the phase, named by the arc's last line and the next.
                     const int launch = event_line(s, 0, 741);
                     require(launch == 741 && s.lines.size() == 817, "ship 5's launch");
                     const int flyby = event_line(s, -3);  // ship 1's first drop
                     auto ship6 = [](std::string line) { return with_token(line, 0, "6"); };
                     const double t0 = value_at(s, launch, 2);
                     const double vx = value_at(s, launch + 1, 6), vy = value_at(s, launch + 1, 7),
                                  vz = value_at(s, launch + 1, 8);
                     const double speed = std::sqrt(vx * vx + vy * vy + vz * vz);
                     const double k = -0.59 / speed;
                     auto arc_line = [&](double epoch, double scale) {
                       return "6\t-1\t" + number(epoch) + "\t" + number(scale * k * vx) + "\t" +
                              number(scale * k * vy) + "\t" + number(scale * k * vz);
                     };
                     const std::string launch1 = with_token(ship6(s.lines[740]), 9, "3.3");
                     const std::string launch2 = with_token(ship6(s.lines[741]), 9, "3.3");
                     const std::string drop = with_token(ship6(line_at(s, flyby)), 9, "600");
                     s.lines.push_back(launch1);
                     s.lines.push_back(launch2);
                     s.lines.push_back(arc_line(t0, 0.0));      // 820 opens
                     s.lines.push_back(arc_line(t0, 1.0));      // 821
                     s.lines.push_back(arc_line(t0 + 1, 1.0));  // 822
                     s.lines.push_back(arc_line(t0 + 1, 0.0));  // 823 closes
                     s.lines.push_back(drop);
                     s.lines.push_back(drop);
                     return exits(sun_too_close(823, 824), 1);
                   }});
  cases.push_back(
      {"Error201_AsteroidAndShipMovedAlongTrack", "Error201", [](Scenario& s) {
         // Asteroid 1017, met once by ship 5 at the end of its last arc, is
         // moved 1500 km along its track (its mean anomaly advanced by the
         // time it needs for 1500 km) and both rendezvous lines with it. The
         // rendezvous still matches the asteroid (the track bends by ~0.01 km
         // and the velocity turns by ~2e-4 km/s over that stretch), but the
         // arc arrives 1500 km short.
         const int meet = event_line(s, 1017);
         require(meet == 816, "ship 5's last rendezvous");
         move_along_track(s, 1017, meet - 1, 1500.0);
         return exits(mismatch("Error201", "Position", meet, "position", "1500 km", "1000 km"), 1);
       }});
  cases.push_back({"Error202_FlybyVelocityShifted", "Error202", [](Scenario& s) {
                     // Ship 4 coasts from its last asteroid into its last Earth drop. Both
                     // drop lines carry the same velocity; moving both by 2.5 m/s keeps the
                     // flyby (no turn, same excess speed, still well under 6 km/s) but not
                     // the coast.
                     const int drop = event_line(s, -3, 739);
                     bool same = drop == 739;
                     for (int j = 2; j < 9; ++j)
                       same = same && value_at(s, 739, j) == value_at(s, 740, j);
                     require(same, "ship 4's last drop");
                     for (int l = drop; l <= drop + 1; ++l) {
                       set_token(s, l, 6, number(value_at(s, l, 6) + 0.0025));
                     }
                     return exits(
                         mismatch("Error202", "Velocity", drop, "velocity", "2.5 m/s", "1 m/s"), 1);
                   }});
  cases.push_back({"Error203_RendezvousMassesRaised", "Error203", [](Scenario& s) {
                     // Both lines of ship 5's last rendezvous 2 kg heavier: the miner is still
                     // 40 kg, the arc before it loses 2 kg too little.
                     const int meet = event_line(s, 1017);
                     for (int l = meet; l <= meet + 1; ++l) set_mass(s, l, value_at(s, l, 9) + 2.0);
                     return exits(mismatch("Error203", "Mass", meet, "mass", "2 kg", "0.001 kg"),
                                  1);
                   }});
}

// Ship 1 is the first ship; its first group of collections (asteroids 985..989, lines
// 155..212) is dropped at the Earth on lines 225/226. Ship 2 meets 975..979 a second time
// (lines 479..536) and drops them on 549/550. Asteroids 975..984 share one orbit (the
// ship met each of them along it), so each of them stands where its neighbour stands.
void mining_cases(std::vector<ErrorCase>& cases) {
  cases.push_back({"Error801_DropShortOfCollections", "Error801", [](Scenario& s) {
                     require(event_line(s, -3) == 225, "ship 1's first drop");
                     set_mass(s, 226, value_at(s, 226, 9) + 0.5);  // 0.5 kg stays on board
                     return exits(mining("Error801", 226, kUnbalanced), 0);
                   }});
  cases.push_back({"Error802_NeighbourAsteroidRenamed", "Error802", [](Scenario& s) {
                     // Ship 1's miner for 976 (lines 29/30, 64451) is left at 975 instead,
                     // which it met 30 days before (lines 15/16).
                     require(event_line(s, 976) == 29 && event_line(s, 975) == 15, "ship 1");
                     set_token(s, 29, 1, "975");
                     set_token(s, 30, 1, "975");
                     return exits(mining("Error802", 30, kTooSoon), 0);
                   }});
  cases.push_back({"Error803_FirstVisitLeaves39kg", "Error803", [](Scenario& s) {
                     require(event_line(s, 975) == 15, "ship 1's first rendezvous");
                     set_mass(s, 16, value_at(s, 15, 9) - 39.0);
                     return exits(mining("Error803", 16, kNotAMiner), 0);
                   }});
  cases.push_back({"Error803_EarlierVisitMetSecond", "Error803", [](Scenario& s) {
                     // Asteroid 985: ship 1 collects it (line 156, 65531.6) before ship 2's
                     // earlier miner visit (line 340, 64436) is read; the earlier one is named.
                     require(event_line(s, 985) == 155 && event_line(s, 985, 200) == 339,
                             "asteroid 985");
                     set_mass(s, 340, value_at(s, 339, 9) - 39.0);
                     return exits(mining("Error803", 340, kNotAMiner), 0);
                   }});
  cases.push_back({"Error803_SingleVisitLeaves39kg", "Error803", [](Scenario& s) {
                     // Asteroid 1015 is met once, by ship 5 (lines 764/765).
                     require(event_line(s, 1015) == 764, "ship 5's first rendezvous");
                     set_mass(s, 765, value_at(s, 764, 9) - 39.0);
                     return exits(mining("Error803", 765, kNotAMiner), 0);
                   }});
  cases.push_back({"Error804_CollectionAboveTenKgAYear", "Error804", [](Scenario& s) {
                     // Ship 2 takes 34.9 kg from 975 three years after ship 1's miner (29.996
                     // allowed) and drops 5 kg more on 550, so its own balance holds.
                     require(event_line(s, 975, 200) == 479 && event_line(s, -3, 540) == 549,
                             "ship 2's collections");
                     set_mass(s, 480, value_at(s, 480, 9) + 5.0);
                     set_mass(s, 550, value_at(s, 550, 9) - 5.0);
                     return exits(
                         "Error804. Mining Data Error on the line 480: The mass of "
                         "resources obtained on the asteroid is unreasonable.\n",
                         0);
                   }});
  cases.push_back({"Error804_NothingCollected", "Error804", [](Scenario& s) {
                     // Ship 2 takes nothing at 975 and drops 29.9 kg less.
                     require(event_line(s, 975, 200) == 479 && event_line(s, -3, 540) == 549,
                             "ship 2's collections");
                     const double taken = value_at(s, 480, 9) - value_at(s, 479, 9);
                     set_mass(s, 480, value_at(s, 479, 9));
                     set_mass(s, 550, value_at(s, 550, 9) + taken);
                     return exits(
                         "Error804. Mining Data Error on the line 480: The mass of "
                         "resources obtained on the asteroid is unreasonable.\n",
                         0);
                   }});
  cases.push_back({"Error805_ThirdVisit", "Error805", [](Scenario& s) {
                     // Ship 2's collection at 976 (lines 493/494) is made at 975, which ship 1
                     // and ship 2 (line 480) have already mined.
                     require(event_line(s, 976, 200) == 493, "ship 2's collection at 976");
                     set_token(s, 493, 1, "975");
                     set_token(s, 494, 1, "975");
                     return exits(mining("Error805", 494, kThirdVisit), 0);
                   }});
  cases.push_back({"Error807_TwentyOneMiners", "Error807", [](Scenario& s) {
                     // Ship 3 (lines 649..694) leaves miners at 995..1004 every 30 days from
                     // 64443.5; ship 4 leaves them at 1005..1014 every 30 days from 64458.5
                     // (lines 697..716) and collects at 995 on 65539.1 (717/718), before
                     // ship 3's next event (671, 65554.1). Ship 3 takes all eleven over as
                     // miner visits of its own: 21 miners.
                     require(event_line(s, 995) == 651 && event_line(s, 1005) == 671 &&
                                 event_line(s, 1005, 695) == 697 && event_line(s, 995, 695) == 717,
                             "ships 3 and 4");
                     auto miner = [&](int first) {
                       std::vector<std::string> pair;
                       for (int l = first; l <= first + 1; ++l) {
                         std::string text = with_token(line_at(s, l), 0, "3");
                         pair.push_back(with_token(text, 9, l == first ? "1000" : "960"));
                       }
                       return pair;
                     };
                     std::vector<std::string> out(s.lines.begin(), s.lines.begin() + 650);
                     for (int k = 0; k < 10; ++k) {
                       out.push_back(line_at(s, 651 + 2 * k));
                       out.push_back(line_at(s, 652 + 2 * k));
                       for (std::string& text : miner(697 + 2 * k)) out.push_back(text);
                     }
                     for (std::string& text : miner(717)) out.push_back(text);
                     out.insert(out.end(), s.lines.begin() + 670, s.lines.end());
                     s.lines = out;
                     return exits(
                         "Error807. Mining Data Error: The number of miners used by a "
                         "single Mining Ship exceeds the allowable range. Ship ID:3.\n",
                         0);
                   }});
  cases.push_back({"Error901_FinalMassBelow500", "Error901", [](Scenario& s) {
                     // Ship 5 ends at its rendezvous with 1017, leaving a 40 kg miner.
                     require(event_line(s, 1017) == 816 && s.lines.size() == 817, "ship 5's end");
                     set_mass(s, 816, 539.9);
                     set_mass(s, 817, 499.9);
                     return exits(
                         "Error901. Mass Error: The final mass of the Minging ship is "
                         "unreasonable. Ship ID:5.\n",
                         0);
                   }});
}

// The demo's five ships deliver 1396 kg from 40 asteroids.
void ship_count_cases(std::vector<ErrorCase>& cases) {
  auto add_launch_only_ships = [](Scenario& s, int count) {
    require(event_line(s, 0, 741) == 741, "ship 5's launch");
    const std::string first = s.lines[740], second = s.lines[741];
    for (int id = 6; id < 6 + count; ++id) {
      s.lines.push_back(with_token(first, 0, std::to_string(id)));
      s.lines.push_back(with_token(second, 0, std::to_string(id)));
    }
  };
  cases.push_back({"Error301_SixthShipOnlyLaunches", "Error301", [=](Scenario& s) {
                     // 2 * e^(0.004 * 1396 / 6) = 5.07: five ships allowed.
                     add_launch_only_ships(s, 1);
                     return exits(
                         "Error301. Mining Ship Number Error: The number of Mining "
                         "Ships is 6, greater than the appropriable maximum number 5.\n",
                         3);
                   }});
  cases.push_back({"Error301_TwentyShipsShareTheMass", "Error301", [=](Scenario& s) {
                     // 2 * e^(0.004 * 1396 / 20) = 2.64: two ships allowed.
                     add_launch_only_ships(s, 15);
                     return exits(
                         "Error301. Mining Ship Number Error: The number of Mining "
                         "Ships is 20, greater than the appropriable maximum number 2.\n",
                         3);
                   }});
}

}  // namespace

std::vector<ErrorCase> physics_error_cases() {
  std::vector<ErrorCase> cases;
  thrust_table_cases(cases);
  arc_timing_cases(cases);
  arc_state_cases(cases);
  mining_cases(cases);
  ship_count_cases(cases);
  cases.push_back(
      {"ScoreFile_IsADirectory", kScoreFileError, [](Scenario& s) {
         s.prepare = [](const std::string& folder) {
           mkdir((folder + "/ScoreData.txt").c_str(), 0700);
         };
         return Expectation{std::string(kScoreFileError) + " 'ScoreData.txt'.\n", 0, std::nullopt};
       }});
  return cases;
}

}  // namespace kavren::test
