// Cases for the command line, the input files, the line grammar, the grouping of lines
// and the epochs.
//
// The demo (kavren-synth demo) that every case starts from, in 1-based line numbers:
// ship 1 is lines 1-324 (launch 1-2, twelve arc lines before each following event,
// rendezvous 975 at 15-16, 976 at 29-30, Earth drops at 225-226 and 309-310, a last
// Earth flyby at 323-324); ship 2 is lines 325-648 with the same pattern; ships 3 and 4
// (649-694, 695-740) have no arc lines at all (coasts between adjacent events); ship 5
// (741-817) thrusts. Line indices below are found from the event IDs where it helps.
#include <sys/stat.h>

#include <cstdlib>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "support/error_case.h"
#include "support/e2e.h"

namespace kavren::test {
namespace {

using Lines = std::vector<std::string>;

const std::string kA09 = "ErrorA09. File Format Error on the line ";
const std::string kEmpty = ": This line is empty!\n";
const std::string kUnreasonable = ": The number of data in this line is unreasonable.\n";

// Message with the 1-based number of the line whose 0-based index is `index`.
std::string numbered(const std::string& head, int index, const std::string& tail) {
  return head + std::to_string(index + 1) + tail;
}

Expectation failed(const std::string& out) {
  return Expectation{out, 0, std::nullopt};
}

std::string a10(int index) {
  return numbered("ErrorA10. File Format Error on the line", index,
                  ": The event ID is unreasonable.\n");
}
std::string a11(int index) {
  return numbered("ErrorA11. File Format Error on the line", index,
                  ": The event ID of the burning arcs is wrong.\n");
}
std::string a12(int index) {
  return numbered("ErrorA12. File Format Error on the line", index,
                  ": The ID of the ship is wrong.\n");
}
std::string e001(int index) {
  return numbered("Error001. Event Time Error on the line", index,
                  ": The epoch is earlier than the mission's initial time (64328 MJD).\n");
}
std::string e002(int index) {
  return numbered("Error002. Event Time Error on the line", index,
                  ": The epoch is later than the mission's end time (69807 MJD).\n");
}
std::string e005(int index) {
  return numbered("Error005. Event Time Error on the line", index,
                  ": The epoch of the launch, rendezvous, or flyby is earlier than the epoch "
                  "of last launch, rendezvous, or flyby.\n");
}
std::string e806(int index) {
  return numbered("Error806. Mining Data Error on the line", index,
                  ": The hyperbolic excess velocity of the ship relative to the Earth should "
                  "not be larger than 6.0 km/s  at the moment of dropping resources.\n");
}
// The reader's short-arc message prints the 0-based index of the previous event's
// second line as it is.
std::string short_arc(int previous_second_index) {
  return "ErrorA03:  File Format Error on the line " + std::to_string(previous_second_index) +
         ": The number of lines in this burning arc is unreasonable.\n";
}

// Indices of the event lines with this event ID, in file order (both lines of a pair).
std::vector<int> event_lines(const Lines& lines, int id) {
  std::vector<int> found;
  for (std::size_t i = 0; i < lines.size(); ++i) {
    const std::vector<std::string> tokens = tokens_of(lines[i]);
    if (tokens.size() == 10 && std::atoi(tokens[1].c_str()) == id) {
      found.push_back(static_cast<int>(i));
    }
  }
  if (found.empty()) throw std::runtime_error("no event line with ID " + std::to_string(id));
  return found;
}

// The 0-based index of the first line of ship `ship` (its ID in column 1).
int first_line_of_ship(const Lines& lines, int ship) {
  for (std::size_t i = 0; i < lines.size(); ++i) {
    if (std::atoi(tokens_of(lines[i]).at(0).c_str()) == ship) return static_cast<int>(i);
  }
  throw std::runtime_error("no ship " + std::to_string(ship));
}

// The index of the first event line at or after `from`.
int next_event_line(const Lines& lines, int from) {
  for (std::size_t i = static_cast<std::size_t>(from); i < lines.size(); ++i) {
    if (tokens_of(lines[i]).size() == 10) return static_cast<int>(i);
  }
  throw std::runtime_error("no event line after " + std::to_string(from));
}

double token_value(const std::string& line, int k) {
  return std::atof(tokens_of(line).at(static_cast<std::size_t>(k)).c_str());
}

// Adds `dv` km/s to the x velocity of an event line.
std::string faster(const std::string& line, double dv) {
  return with_token(line, 6, number(token_value(line, 6) + dv));
}

// Removes `count` arc lines just before the event line at `event_index`; the arc lines
// there must number more than `count`.
void drop_arc_lines_before(Lines& lines, int event_index, int count) {
  for (int k = 1; k <= count; ++k) {
    if (tokens_of(lines.at(static_cast<std::size_t>(event_index - k))).size() != 6) {
      throw std::runtime_error("not an arc line before line " + std::to_string(event_index));
    }
  }
  lines.erase(lines.begin() + (event_index - count), lines.begin() + event_index);
}

// The whole outcome of the unchanged demo as kavren-synth states it from its own
// construction (summary and score file), read once per test process.
const Expectation& demo_outcome() {
  static const std::unique_ptr<Expectation> outcome = [] {
    TempDir dir;
    const RunResult made = run_in(dir.path(), KAVREN_SYNTH_BIN, {"demo", dir.path() + "/demo"});
    if (made.status != 0) throw std::runtime_error("kavren-synth demo failed: " + made.err);
    auto expected = std::make_unique<Expectation>();
    expected->out = dir.read("demo/expected_stdout.txt").value();
    expected->score = dir.read("demo/expected_ScoreData.txt").value();
    expected->status = 0;
    return expected;
  }();
  return *outcome;
}

// --- command line and input files ---

void add_file_cases(std::vector<ErrorCase>& cases) {
  cases.push_back({"Error000_BothFileNames", "Error000", [](Scenario& s) {
                     // The message speaks of two files, yet naming them is refused too.
                     s.args = {"KAVREN_Asteroids_Data.txt", "Result.txt"};
                     return failed(
                         "Error000. The number of input parameters is incorrect.\n"
                         "The input is consisted with two files: the front one contains the "
                         "KAVREN_Asteroids_Data.txt data, and the behind one takes the "
                         "Result.txt.\n");
                   }});
  cases.push_back({"ErrorA01_NoSolutionFile", "ErrorA01", [](Scenario& s) {
                     s.write_result = false;
                     return Expectation{
                         "ErrorA01. File Open Error: Cannot find the solution file.\n", 1,
                         std::nullopt};
                   }});
  cases.push_back({"ErrorA02_EmptyFile", "ErrorA02", [](Scenario& s) {
                     s.lines.clear();
                     return failed("ErrorA02. File Open Error: The solution file is empty.\n");
                   }});
  cases.push_back({"ErrorA02_SolutionIsADirectory", "ErrorA02", [](Scenario& s) {
                     // A directory opens for reading but yields no first character.
                     s.write_result = false;
                     s.prepare = [](const std::string& folder) {
                       mkdir((folder + "/Result.txt").c_str(), 0700);
                     };
                     return failed("ErrorA02. File Open Error: The solution file is empty.\n");
                   }});
}

// --- the grammar of one line ---

void add_line_cases(std::vector<ErrorCase>& cases) {
  cases.push_back({"ErrorA09_OnlyALineBreak", "ErrorA09", [](Scenario& s) {
                     s.lines = {""};
                     return failed(kA09 + "1" + kEmpty);
                   }});
  cases.push_back({"ErrorA09_EmptyLineInsideAnArc", "ErrorA09", [](Scenario& s) {
                     s.lines.insert(s.lines.begin() + 2, "");
                     return failed(kA09 + "3" + kEmpty);
                   }});
  cases.push_back({"ErrorA09_WhiteSpaceLine", "ErrorA09", [](Scenario& s) {
                     // Longer than 12 characters, but nothing is left after trimming.
                     s.lines.insert(s.lines.begin() + 2, " \t  \t     \t   \t ");
                     return failed(kA09 + "3" + kEmpty);
                   }});
  cases.push_back({"ErrorA09_LineStartsWithNul", "ErrorA09", [](Scenario& s) {
                     // The line's text ends at its first NUL byte, so it is empty.
                     s.lines[2] = std::string(1, '\0') + s.lines[2];
                     return failed(kA09 + "3" + kEmpty);
                   }});
  cases.push_back({"ErrorA09_ElevenCharacters", "ErrorA09", [](Scenario& s) {
                     // Six tokens, yet too short to be a line: the length rule comes before
                     // the count of tokens and the event ID.
                     s.lines[2] = "1 1 6 0 0 0";
                     return failed(kA09 + "3" + kUnreasonable);
                   }});
  cases.push_back({"ErrorA11_TrailingCrMakesTwelveCharacters", "ErrorA11", [](Scenario& s) {
                     // The same line with a CR is 12 characters as read: the length rule
                     // passes and its arc-line event ID 1 is the first fault.
                     s.lines[2] = "1 1 6 0 0 0\r";
                     return failed(a11(2));
                   }});
  cases.push_back({"ErrorA09_SevenTokens", "ErrorA09", [](Scenario& s) {
                     s.lines[3] += "\t0";
                     return failed(kA09 + "4" + kUnreasonable);
                   }});
  cases.push_back({"ErrorA09_NineTokenEventLine", "ErrorA09", [](Scenario& s) {
                     const int i = event_lines(s.lines, 975).at(0);
                     s.lines[i] = s.lines[i].substr(0, s.lines[i].rfind('\t'));
                     return failed(numbered(kA09, i, kUnreasonable));
                   }});
  cases.push_back({"ErrorA09_TabThenBlankInArcLine", "ErrorA09", [](Scenario& s) {
                     // "1\t -1..." splits into 1, ROOT, -1, ...: seven tokens.
                     s.lines[2].replace(s.lines[2].find('\t'), 1, "\t ");
                     return failed(kA09 + "3" + kUnreasonable);
                   }});
  cases.push_back({"ErrorA09_TabThenBlankInLaunchLine", "ErrorA09", [](Scenario& s) {
                     s.lines[0].replace(s.lines[0].rfind('\t'), 1, "\t ");
                     return failed(kA09 + "1" + kUnreasonable);
                   }});
  cases.push_back({"ErrorA10_BurningArcIdOnEventLine", "ErrorA10", [](Scenario& s) {
                     const int i = event_lines(s.lines, 975).at(0);
                     s.lines[i] = with_token(s.lines[i], 1, "-1");
                     return failed(a10(i));
                   }});
  cases.push_back({"ErrorA10_AsteroidBeyondCatalogue", "ErrorA10", [](Scenario& s) {
                     const int i = event_lines(s.lines, 976).at(1);
                     s.lines[i] = with_token(s.lines[i], 1, "60001");
                     return failed(a10(i));
                   }});
  cases.push_back({"ErrorA10_NoSuchPlanet", "ErrorA10", [](Scenario& s) {
                     s.lines[1] = with_token(s.lines[1], 1, "-5");
                     return failed(a10(1));
                   }});
  cases.push_back({"ErrorA11_LaunchIdOnArcLine", "ErrorA11", [](Scenario& s) {
                     s.lines[2] = with_token(s.lines[2], 1, "0");
                     return failed(a11(2));
                   }});
  cases.push_back({"ErrorA11_AsteroidIdOnArcLine", "ErrorA11", [](Scenario& s) {
                     s.lines[13] = with_token(s.lines[13], 1, "975");
                     return failed(a11(13));
                   }});
  cases.push_back({"ErrorA12_ShipZeroOnArcLine", "ErrorA12", [](Scenario& s) {
                     s.lines[2] = with_token(s.lines[2], 0, "0");
                     return failed(a12(2));
                   }});
  cases.push_back({"ErrorA12_NegativeShipOnEventLine", "ErrorA12", [](Scenario& s) {
                     const int i = event_lines(s.lines, 975).at(0);
                     s.lines[i] = with_token(s.lines[i], 0, "-1");
                     return failed(a12(i));
                   }});
  cases.push_back({"Error001_ArcEpochBeforeMissionStart", "Error001", [](Scenario& s) {
                     s.lines[3] = with_token(s.lines[3], 2, "64327.999");
                     return failed(e001(3));
                   }});
  cases.push_back({"Error001_LaunchEpochBeforeMissionStart", "Error001", [](Scenario& s) {
                     s.lines[0] = with_token(s.lines[0], 2, "64000");
                     return failed(e001(0));
                   }});
  cases.push_back({"Error002_LastLineAfterMissionEnd", "Error002", [](Scenario& s) {
                     const int i = static_cast<int>(s.lines.size()) - 1;
                     s.lines[i] = with_token(s.lines[i], 2, "69807.001");
                     return failed(e002(i));
                   }});
  cases.push_back({"Error002_ArcEpochAfterMissionEnd", "Error002", [](Scenario& s) {
                     s.lines[4] = with_token(s.lines[4], 2, "70000");
                     return failed(e002(4));
                   }});
}

// --- the grouping of lines into ships and event pairs ---

// Line `index` becomes a copy of the launch's second line with event ID `id`.
void event_line_at(Lines& lines, int index, int id) {
  lines[index] = with_token(lines[1], 1, std::to_string(id));
}

void add_structure_cases(std::vector<ErrorCase>& cases) {
  const std::string a13 =
      "ErrorA13. File Format Error: The number of mining ships does not match the number of "
      "launch events.\n";
  cases.push_back({"ErrorA13_ShipIdChangesInsideAnArc", "ErrorA13", [a13](Scenario& s) {
                     // Ship 1, ship 7, ship 1 again: two more ships without launches.
                     s.lines[2] = with_token(s.lines[2], 0, "7");
                     return failed(a13);
                   }});
  cases.push_back({"ErrorA13_RendezvousRelabelledAsLaunch", "ErrorA13", [a13](Scenario& s) {
                     for (int i : event_lines(s.lines, 975)) {
                       if (std::atoi(tokens_of(s.lines[i])[0].c_str()) == 1) {
                         s.lines[i] = with_token(s.lines[i], 1, "0");
                       }
                     }
                     return failed(a13);
                   }});
  cases.push_back({"ErrorA14_ShipStartsWithRendezvous", "ErrorA14", [](Scenario& s) {
                     // Ship 3 has no arc lines: swap the IDs of its launch and its first
                     // rendezvous, so its launch pair is lines 3 and 4 of the ship.
                     const int start = first_line_of_ship(s.lines, 3);
                     const std::string asteroid = tokens_of(s.lines[start + 2])[1];
                     for (int k = 0; k < 2; ++k) {
                       s.lines[start + k] = with_token(s.lines[start + k], 1, asteroid);
                       s.lines[start + 2 + k] = with_token(s.lines[start + 2 + k], 1, "0");
                     }
                     return failed(numbered("ErrorA14. File Format Error on the line", start + 2,
                                            ": The event ID of the launch is wrong.\n"));
                   }});
  cases.push_back({"ErrorA15_ArcLineBetweenLaunchLines", "ErrorA15", [](Scenario& s) {
                     const int start = first_line_of_ship(s.lines, 5);
                     std::swap(s.lines[start + 1], s.lines[start + 2]);
                     return failed(numbered("ErrorA15. File Format Error on the line", start + 2,
                                            ": The event IDs of one launch do not appear in two "
                                            "adjacent lines.\n"));
                   }});

  struct Planet {
    int id;
    const char* name;
    const char* odd_code;
    const char* apart_code;
  };
  for (const Planet& p :
       {Planet{-2, "Venus", "ErrorA16", "ErrorA17"}, Planet{-3, "Earth", "ErrorA18", "ErrorA19"},
        Planet{-4, "Mars", "ErrorA20", "ErrorA21"}}) {
    const std::string odd = std::string(p.odd_code) +
                            ". File Format Error: The number of the event IDs of the " + p.name +
                            " flybys is odd.\n";
    cases.push_back(
        {std::string(p.odd_code) + "_One" + p.name + "Line", p.odd_code, [p, odd](Scenario& s) {
           event_line_at(s.lines, 2, p.id);
           return failed(odd);
         }});
    const std::string apart =
        numbered(std::string(p.apart_code) + ". File Format Error on the line", 4,
                 std::string(": The event IDs of one ") + p.name +
                     " flyby do not appear in two adjacent lines.\n");
    cases.push_back({std::string(p.apart_code) + "_" + p.name + "LinesOneApart", p.apart_code,
                     [p, apart](Scenario& s) {
                       event_line_at(s.lines, 2, p.id);
                       event_line_at(s.lines, 4, p.id);
                       return failed(apart);
                     }});
  }

  cases.push_back({"ErrorA22_OneRendezvousLine", "ErrorA22", [](Scenario& s) {
                     event_line_at(s.lines, 2, 975);
                     return failed(
                         "ErrorA22. File Format Error: The number of the event IDs of the "
                         "rendezvouses is odd.\n");
                   }});
  const std::string a23_tail =
      ": The event IDs of one rendezvous do not appear in two adjacent lines.\n";
  cases.push_back({"ErrorA23_TwoAsteroidsInOnePair", "ErrorA23", [a23_tail](Scenario& s) {
                     const int i = event_lines(s.lines, 975).at(1);
                     s.lines[i] = with_token(s.lines[i], 1, "976");
                     return failed(
                         numbered("ErrorA23. File Format Error on the line", i, a23_tail));
                   }});
  cases.push_back({"ErrorA23_RendezvousLinesOneApart", "ErrorA23", [a23_tail](Scenario& s) {
                     event_line_at(s.lines, 2, 975);
                     event_line_at(s.lines, 4, 975);
                     return failed(
                         numbered("ErrorA23. File Format Error on the line", 4, a23_tail));
                   }});
}

// --- assembling each ship: epochs, Earth drops, short arcs ---

void add_assembly_cases(std::vector<ErrorCase>& cases) {
  cases.push_back({"ErrorA03_ThreeArcLinesAfterLaunch", "ErrorA03:", [](Scenario& s) {
                     drop_arc_lines_before(s.lines, event_lines(s.lines, 975).at(0), 9);
                     return failed(short_arc(1));  // the launch's second line, index 1
                   }});
  cases.push_back({"ErrorA03_OneArcLineAfterSecondShipsLaunch", "ErrorA03:", [](Scenario& s) {
                     const int start = first_line_of_ship(s.lines, 2);
                     const int next_event = next_event_line(s.lines, start + 2);
                     drop_arc_lines_before(s.lines, next_event, next_event - (start + 2) - 1);
                     return failed(short_arc(start + 1));
                   }});
  cases.push_back({"ErrorA03_TwoArcLinesBetweenRendezvous", "ErrorA03:", [](Scenario& s) {
                     const int previous_second = event_lines(s.lines, 975).at(1);
                     const int next_event = event_lines(s.lines, 976).at(0);
                     drop_arc_lines_before(s.lines, next_event,
                                           next_event - previous_second - 1 - 2);
                     return failed(short_arc(previous_second));
                   }});
  cases.push_back({"Error005_RendezvousAtLaunchEpoch", "Error005", [](Scenario& s) {
                     // Ship 3 coasts straight from its launch to its first rendezvous.
                     const int start = first_line_of_ship(s.lines, 3);
                     const std::string launch_epoch = tokens_of(s.lines[start + 1])[2];
                     s.lines[start + 2] = with_token(s.lines[start + 2], 2, launch_epoch);
                     return failed(e005(start + 2));
                   }});
  cases.push_back({"Error005_RendezvousBeforePreviousOne", "Error005", [](Scenario& s) {
                     const int start = first_line_of_ship(s.lines, 4);
                     const int i = start + 4;  // first line of the ship's second rendezvous
                     const double previous = token_value(s.lines[i - 1], 2);
                     s.lines[i] = with_token(s.lines[i], 2, number(previous - 1.0));
                     return failed(e005(i));
                   }});
  cases.push_back({"Error005_ComesBeforeTheShortArc", "Error005", [](Scenario& s) {
                     const int i = event_lines(s.lines, 975).at(0);
                     s.lines[i] = with_token(s.lines[i], 2, tokens_of(s.lines[1])[2]);
                     drop_arc_lines_before(s.lines, i, 10);
                     return failed(e005(i - 10));
                   }});
  // The ship's speed relative to the Earth is at most about 6 km/s on every Earth line
  // of the demo, so 100 km/s more along x leaves at least 94 km/s: far above 6.001.
  cases.push_back({"Error806_FastEarthDrop", "Error806", [](Scenario& s) {
                     const int i = event_lines(s.lines, -3).at(0);
                     s.lines[i] = faster(s.lines[i], 100.0);
                     return failed(e806(i));
                   }});
  cases.push_back({"Error806_FastEarthFlybyLosesOneKilogram", "Error806", [](Scenario& s) {
                     // Ship 1's last event: an Earth flyby without a mass change.
                     const int i = event_lines(s.lines, -3).at(4);
                     s.lines[i] = faster(s.lines[i], 100.0);
                     s.lines[i + 1] = with_token(s.lines[i + 1], 9,
                                                 number(token_value(s.lines[i + 1], 9) - 1.0));
                     return failed(e806(i));
                   }});
  cases.push_back({"Error806_NanVelocityAtEarthDrop", "Error806", [](Scenario& s) {
                     // No excess speed can be told, and the ship drops resources: refused.
                     const int i = event_lines(s.lines, -3).at(0);
                     s.lines[i] = with_token(s.lines[i], 6, "nan");
                     return failed(e806(i));
                   }});
  cases.push_back(
      {"Error607_FastEarthFlybyWithinMassTolerance", "Error607", [](Scenario& s) {
         // Half a gram is no drop: the reader takes the pair as an ordinary flyby,
         // and the flyby check then finds the two excess speeds apart.
         const int i = event_lines(s.lines, -3).at(4);
         s.lines[i] = faster(s.lines[i], 100.0);
         s.lines[i + 1] =
             with_token(s.lines[i + 1], 9, number(token_value(s.lines[i + 1], 9) - 0.0005));
         return failed(numbered("Error607. Data Error of the event of flyby on the line", i,
                                ": The magnitudes of the hyperbolic excess velocity "
                                "before and after the flyby are different.\n"));
       }});
  cases.push_back({"Error806_ComesBeforeTheShortArc", "Error806", [](Scenario& s) {
                     const int i = event_lines(s.lines, -3).at(0);
                     s.lines[i] = faster(s.lines[i], 100.0);
                     drop_arc_lines_before(s.lines, i, 9);
                     return failed(e806(i - 9));
                   }});
}

// --- accepted variations of the file: the demo's own outcome ---

void add_accepted_cases(std::vector<ErrorCase>& cases) {
  const char* accepted = "Check successfully!";
  cases.push_back({"Accepted_CrLfLineEnds", accepted, [](Scenario& s) {
                     for (std::string& line : s.lines) line += "\r";
                     return demo_outcome();
                   }});
  cases.push_back({"Accepted_NoLineBreakAfterLastLine", accepted, [](Scenario& s) {
                     s.result_suffix = s.lines.back();
                     s.lines.pop_back();
                     return demo_outcome();
                   }});
  cases.push_back({"Accepted_BlankBeforeEveryTab", accepted, [](Scenario& s) {
                     // A blank before a tab only ends a piece; unlike a blank after a tab it
                     // adds no token. Padding around a line is trimmed away.
                     for (std::string& line : s.lines) {
                       std::string padded = " \t ";
                       for (char c : line)
                         padded += c == '\t' ? std::string(" \t") : std::string(1, c);
                       line = padded + "  \t";
                     }
                     return demo_outcome();
                   }});
  cases.push_back({"Accepted_BlanksInsteadOfTabs", accepted, [](Scenario& s) {
                     for (std::string& line : s.lines) {
                       std::string spaced;
                       for (char c : line)
                         spaced += c == '\t' ? std::string("   ") : std::string(1, c);
                       line = spaced;
                     }
                     return demo_outcome();
                   }});
  cases.push_back({"Accepted_ShipIdsReusedAndSkipped", accepted, [](Scenario& s) {
                     // A ship is a run of lines with one ID: ship 3 may reuse ship 1's ID,
                     // and IDs need not follow one another.
                     for (std::string& line : s.lines) {
                       const std::string id = tokens_of(line)[0];
                       if (id == "3") line = with_token(line, 0, "1");
                       if (id == "5") line = with_token(line, 0, "99");
                     }
                     return demo_outcome();
                   }});
  cases.push_back({"Accepted_ArcLinesAfterLastEventIgnored", accepted, [](Scenario& s) {
                     // Arc lines that no later event closes into an arc: two after ship 1's
                     // last event (a count no arc may have) and five after the file's last
                     // event, with thrusts no ship could fly.
                     const int last_of_ship1 = first_line_of_ship(s.lines, 2) - 1;
                     const double t1 = token_value(s.lines[last_of_ship1], 2);
                     const double t5 = token_value(s.lines.back(), 2);
                     for (int k = 2; k >= 1; --k) {
                       s.lines.insert(s.lines.begin() + last_of_ship1 + 1,
                                      "1\t-1\t" + number(t1 + k) + "\t1e9\t-1e9\t1e9");
                     }
                     for (int k = 1; k <= 5; ++k) {
                       s.lines.push_back("5\t-1\t" + number(t5 + k) + "\t5e8\t5e8\t5e8");
                     }
                     return demo_outcome();
                   }});
}

}  // namespace

std::vector<ErrorCase> input_error_cases() {
  std::vector<ErrorCase> cases;
  cases.push_back({"Error000_AnyArgument", "Error000", [](Scenario& s) {
                     s.args = {"Result.txt"};
                     return Expectation{
                         "Error000. The number of input parameters is incorrect.\n"
                         "The input is consisted with two files: the front one contains the "
                         "KAVREN_Asteroids_Data.txt data, and the behind one takes the "
                         "Result.txt.\n",
                         0, std::nullopt};
                   }});
  cases.push_back({"ErrorA00_NoCatalogue", "ErrorA00:", [](Scenario& s) {
                     s.write_catalogue = false;
                     return Expectation{"ErrorA00: The file of Asteroid Data cannot be found.\n", 1,
                                        std::nullopt};
                   }});
  add_file_cases(cases);
  add_line_cases(cases);
  add_structure_cases(cases);
  add_assembly_cases(cases);
  add_accepted_cases(cases);
  return cases;
}

}  // namespace kavren::test
