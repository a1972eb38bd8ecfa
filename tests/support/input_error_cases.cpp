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

#include <stdexcept>
#include <string>
#include <vector>

#include "support/error_case.h"

namespace kavren::test {
namespace {

using Lines = std::vector<std::string>;

const std::string kA09 = "ErrorA09. File Format Error on the line ";
const std::string kEmpty = ": This line is empty!\n";
const std::string kUnreasonable = ": The number of data in this line is unreasonable.\n";

// The message of `code` that names the line of 0-based index `index`.
std::string on_line(const std::string& code, int index) {
  struct Text {
    const char* code;
    const char* kind;
    const char* what;
  };
  static const Text texts[] = {
      {"ErrorA10", "File Format", "The event ID is unreasonable."},
      {"ErrorA11", "File Format", "The event ID of the burning arcs is wrong."},
      {"ErrorA12", "File Format", "The ID of the ship is wrong."},
      {"ErrorA14", "File Format", "The event ID of the launch is wrong."},
      {"ErrorA15", "File Format",
       "The event IDs of one launch do not appear in two adjacent lines."},
      {"ErrorA23", "File Format",
       "The event IDs of one rendezvous do not appear in two adjacent lines."},
      {"Error001", "Event Time",
       "The epoch is earlier than the mission's initial time (64328 MJD)."},
      {"Error002", "Event Time", "The epoch is later than the mission's end time (69807 MJD)."},
      {"Error005", "Event Time",
       "The epoch of the launch, rendezvous, or flyby is earlier than the epoch of last launch, "
       "rendezvous, or flyby."},
      {"Error806", "Mining Data",
       "The hyperbolic excess velocity of the ship relative to the Earth should not be larger "
       "than 6.0 km/s  at the moment of dropping resources."},
  };
  for (const Text& t : texts) {
    if (code == t.code) {
      return code + ". " + t.kind + " Error on the line" + std::to_string(index + 1) + ": " +
             t.what + "\n";
    }
  }
  throw std::runtime_error("no message " + code);
}

// The reader's short-arc message prints the 0-based index of the previous event's
// second line as it is.
std::string short_arc(int previous_second_index) {
  return "ErrorA03:  File Format Error on the line " + std::to_string(previous_second_index) +
         ": The number of lines in this burning arc is unreasonable.\n";
}

// The 0-based index of the first line of ship `ship` (its ID in column 1).
int first_line_of_ship(const Lines& lines, int ship) {
  for (std::size_t i = 0; i < lines.size(); ++i) {
    if (std::stoi(tokens_of(lines[i]).at(0)) == ship) return static_cast<int>(i);
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

constexpr int kIndex = 1 << 20;  // a TokenRow's `id` for a line given by its index

// One case: token `token` of a line set to `value`; the message of the code (the name up
// to its '_') names that line. The line is the first (nth 0) or second (nth 1) of the
// first pair with event ID `id`, or with kIndex the line of index nth (the last: -1).
struct TokenRow {
  const char* name;
  int id;
  int nth;
  int token;
  const char* value;
};

const TokenRow kTokenRows[] = {
    {"ErrorA10_BurningArcIdOnEventLine", 975, 0, 1, "-1"},
    {"ErrorA10_AsteroidBeyondCatalogue", 976, 1, 1, "60001"},
    {"ErrorA10_NoSuchPlanet", kIndex, 1, 1, "-5"},
    {"ErrorA11_LaunchIdOnArcLine", kIndex, 2, 1, "0"},
    {"ErrorA11_AsteroidIdOnArcLine", kIndex, 13, 1, "975"},
    {"ErrorA12_ShipZeroOnArcLine", kIndex, 2, 0, "0"},
    {"ErrorA12_NegativeShipOnEventLine", 975, 0, 0, "-1"},
    {"Error001_ArcEpochBeforeMissionStart", kIndex, 3, 2, "64327.999"},
    {"Error001_LaunchEpochBeforeMissionStart", kIndex, 0, 2, "64000"},
    {"Error002_LastLineAfterMissionEnd", kIndex, -1, 2, "69807.001"},
    {"Error002_ArcEpochAfterMissionEnd", kIndex, 4, 2, "70000"},
    {"ErrorA23_TwoAsteroidsInOnePair", 975, 1, 1, "976"},
    {"ErrorA23_LastCatalogueIdInAnotherAsteroidsPair", 975, 1, 1, "60000"},
    // No excess speed can be told, and the ship drops resources: refused.
    {"Error806_NanVelocityAtEarthDrop", -3, 0, 6, "nan"},
};

// --- command line and input files ---

void add_file_cases(std::vector<ErrorCase>& cases) {
  const std::string e000 =
      "Error000. The number of input parameters is incorrect.\n"
      "The input is consisted with two files: the front one contains the "
      "KAVREN_Asteroids_Data.txt data, and the behind one takes the Result.txt.\n";
  cases.push_back({"Error000_AnyArgument", "Error000", [e000](Scenario& s) {
                     s.args = {"Result.txt"};
                     return fails(e000);
                   }});
  cases.push_back({"Error000_BothFileNames", "Error000", [e000](Scenario& s) {
                     // The message speaks of two files, yet naming them is refused too.
                     s.args = {"KAVREN_Asteroids_Data.txt", "Result.txt"};
                     return fails(e000);
                   }});
  cases.push_back({"ErrorA00_NoCatalogue", "ErrorA00:", [](Scenario& s) {
                     s.write_catalogue = false;
                     return fails("ErrorA00: The file of Asteroid Data cannot be found.\n", 1);
                   }});
  cases.push_back({"ErrorA01_NoSolutionFile", "ErrorA01", [](Scenario& s) {
                     s.write_result = false;
                     return fails("ErrorA01. File Open Error: Cannot find the solution file.\n", 1);
                   }});
  cases.push_back({"ErrorA02_EmptyFile", "ErrorA02", [](Scenario& s) {
                     s.lines.clear();
                     return fails("ErrorA02. File Open Error: The solution file is empty.\n");
                   }});
  cases.push_back({"ErrorA02_SolutionIsADirectory", "ErrorA02", [](Scenario& s) {
                     // A directory opens for reading but yields no first character.
                     s.write_result = false;
                     s.prepare = [](const std::string& folder) {
                       mkdir((folder + "/Result.txt").c_str(), 0700);
                     };
                     return fails("ErrorA02. File Open Error: The solution file is empty.\n");
                   }});
}

// --- the grammar of one line ---

void add_line_cases(std::vector<ErrorCase>& cases) {
  for (const TokenRow& row : kTokenRows) {
    const std::string name = row.name;
    const std::string code = name.substr(0, name.find('_'));
    cases.push_back({name, code, [row, code](Scenario& s) {
                       const int last = static_cast<int>(s.lines.size()) - 1;
                       const int i = row.id != kIndex ? pair_line(s, row.id) + row.nth
                                     : row.nth < 0    ? last
                                                      : row.nth;
                       set_token(s, i, row.token, row.value);
                       return fails(on_line(code, i));
                     }});
  }
  cases.push_back({"ErrorA09_OnlyALineBreak", "ErrorA09", [](Scenario& s) {
                     s.lines = {""};
                     return fails(kA09 + "1" + kEmpty);
                   }});
  cases.push_back({"ErrorA09_EmptyLineInsideAnArc", "ErrorA09", [](Scenario& s) {
                     s.lines.insert(s.lines.begin() + 2, "");
                     return fails(kA09 + "3" + kEmpty);
                   }});
  cases.push_back({"ErrorA09_WhiteSpaceLine", "ErrorA09", [](Scenario& s) {
                     // Longer than 12 characters, but nothing is left after trimming.
                     s.lines.insert(s.lines.begin() + 2, " \t  \t     \t   \t ");
                     return fails(kA09 + "3" + kEmpty);
                   }});
  cases.push_back({"ErrorA09_LineStartsWithNul", "ErrorA09", [](Scenario& s) {
                     // The line's text ends at its first NUL byte, so it is empty.
                     s.lines[2] = std::string(1, '\0') + s.lines[2];
                     return fails(kA09 + "3" + kEmpty);
                   }});
  cases.push_back({"ErrorA09_ElevenCharacters", "ErrorA09", [](Scenario& s) {
                     // Six tokens, yet too short to be a line: the length rule comes before
                     // the count of tokens and the event ID.
                     s.lines[2] = "1 1 6 0 0 0";
                     return fails(kA09 + "3" + kUnreasonable);
                   }});
  cases.push_back({"ErrorA11_TrailingCrMakesTwelveCharacters", "ErrorA11", [](Scenario& s) {
                     // The same line with a CR is 12 characters as read: the length rule
                     // passes and its arc-line event ID 1 is the first fault.
                     s.lines[2] = "1 1 6 0 0 0\r";
                     return fails(on_line("ErrorA11", 2));
                   }});
  cases.push_back({"ErrorA09_SevenTokens", "ErrorA09", [](Scenario& s) {
                     s.lines[3] += "\t0";
                     return fails(kA09 + "4" + kUnreasonable);
                   }});
  cases.push_back({"ErrorA09_NineTokenEventLine", "ErrorA09", [](Scenario& s) {
                     const int i = pair_line(s, 975);
                     s.lines[i] = s.lines[i].substr(0, s.lines[i].rfind('\t'));
                     return fails(kA09 + std::to_string(i + 1) + kUnreasonable);
                   }});
  cases.push_back({"ErrorA09_TabThenBlankInArcLine", "ErrorA09", [](Scenario& s) {
                     // "1\t -1..." splits into 1, ROOT, -1, ...: seven tokens.
                     s.lines[2].replace(s.lines[2].find('\t'), 1, "\t ");
                     return fails(kA09 + "3" + kUnreasonable);
                   }});
  cases.push_back({"ErrorA09_TabThenBlankInLaunchLine", "ErrorA09", [](Scenario& s) {
                     s.lines[0].replace(s.lines[0].rfind('\t'), 1, "\t ");
                     return fails(kA09 + "1" + kUnreasonable);
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
                     set_token(s, 2, 0, "7");
                     return fails(a13);
                   }});
  cases.push_back({"ErrorA13_RendezvousRelabelledAsLaunch", "ErrorA13", [a13](Scenario& s) {
                     // Ship 1's first rendezvous (asteroid 975) becomes a second launch.
                     const int i = pair_line(s, 975);
                     set_token(s, i, 1, "0");
                     set_token(s, i + 1, 1, "0");
                     return fails(a13);
                   }});
  cases.push_back({"ErrorA14_ShipStartsWithRendezvous", "ErrorA14", [](Scenario& s) {
                     // Ship 3 has no arc lines: swap the IDs of its launch and its first
                     // rendezvous, so its launch pair is lines 3 and 4 of the ship.
                     const int start = first_line_of_ship(s.lines, 3);
                     const std::string asteroid = tokens_of(s.lines[start + 2])[1];
                     for (int k = 0; k < 2; ++k) {
                       set_token(s, start + k, 1, asteroid);
                       set_token(s, start + 2 + k, 1, "0");
                     }
                     return fails(on_line("ErrorA14", start + 2));
                   }});
  cases.push_back({"ErrorA15_ArcLineBetweenLaunchLines", "ErrorA15", [](Scenario& s) {
                     const int start = first_line_of_ship(s.lines, 5);
                     std::swap(s.lines[start + 1], s.lines[start + 2]);
                     return fails(on_line("ErrorA15", start + 2));
                   }});

  // One line with the event ID, then two lines apart, for each kind of paired event.
  struct Pairing {
    int id;
    const char* name;    // in the case names
    const char* events;  // in the messages: the kind of event, in the plural and singular
    const char* event;
    const char* odd_code;
    const char* apart_code;
  };
  for (const Pairing& p :
       {Pairing{-2, "Venus", "Venus flybys", "Venus flyby", "ErrorA16", "ErrorA17"},
        Pairing{-3, "Earth", "Earth flybys", "Earth flyby", "ErrorA18", "ErrorA19"},
        Pairing{-4, "Mars", "Mars flybys", "Mars flyby", "ErrorA20", "ErrorA21"},
        Pairing{975, "Rendezvous", "rendezvouses", "rendezvous", "ErrorA22", "ErrorA23"}}) {
    const std::string odd = std::string(p.odd_code) +
                            ". File Format Error: The number of the event IDs of the " + p.events +
                            " is odd.\n";
    cases.push_back(
        {std::string(p.odd_code) + "_One" + p.name + "Line", p.odd_code, [p, odd](Scenario& s) {
           event_line_at(s.lines, 2, p.id);
           return fails(odd);
         }});
    const std::string apart = std::string(p.apart_code) + ". File Format Error on the line5" +
                              ": The event IDs of one " + p.event +
                              " do not appear in two adjacent lines.\n";
    cases.push_back({std::string(p.apart_code) + "_" + p.name + "LinesOneApart", p.apart_code,
                     [p, apart](Scenario& s) {
                       event_line_at(s.lines, 2, p.id);
                       event_line_at(s.lines, 4, p.id);
                       return fails(apart);
                     }});
  }
}

// --- assembling each ship: epochs, Earth drops, short arcs ---

void add_assembly_cases(std::vector<ErrorCase>& cases) {
  cases.push_back({"ErrorA03_ThreeArcLinesAfterLaunch", "ErrorA03:", [](Scenario& s) {
                     drop_arc_lines_before(s.lines, pair_line(s, 975), 9);
                     return fails(short_arc(1));  // the launch's second line, index 1
                   }});
  cases.push_back({"ErrorA03_OneArcLineAfterSecondShipsLaunch", "ErrorA03:", [](Scenario& s) {
                     const int start = first_line_of_ship(s.lines, 2);
                     const int next_event = next_event_line(s.lines, start + 2);
                     drop_arc_lines_before(s.lines, next_event, next_event - (start + 2) - 1);
                     return fails(short_arc(start + 1));
                   }});
  cases.push_back({"ErrorA03_TwoArcLinesBetweenRendezvous", "ErrorA03:", [](Scenario& s) {
                     const int previous_second = pair_line(s, 975) + 1;
                     const int next_event = pair_line(s, 976);
                     drop_arc_lines_before(s.lines, next_event,
                                           next_event - previous_second - 1 - 2);
                     return fails(short_arc(previous_second));
                   }});
  cases.push_back({"Error005_RendezvousAtLaunchEpoch", "Error005", [](Scenario& s) {
                     // Ship 3 coasts straight from its launch to its first rendezvous.
                     const int start = first_line_of_ship(s.lines, 3);
                     set_token(s, start + 2, 2, tokens_of(s.lines[start + 1])[2]);
                     return fails(on_line("Error005", start + 2));
                   }});
  cases.push_back({"Error005_RendezvousBeforePreviousOne", "Error005", [](Scenario& s) {
                     const int start = first_line_of_ship(s.lines, 4);
                     const int i = start + 4;  // first line of the ship's second rendezvous
                     set_token(s, i, 2, number(token(s.lines[i - 1], 2) - 1.0));
                     return fails(on_line("Error005", i));
                   }});
  cases.push_back({"Error005_ComesBeforeTheShortArc", "Error005", [](Scenario& s) {
                     const int i = pair_line(s, 975);
                     set_token(s, i, 2, tokens_of(s.lines[1])[2]);
                     drop_arc_lines_before(s.lines, i, 10);
                     return fails(on_line("Error005", i - 10));
                   }});
  // The ship's speed relative to the Earth is at most about 6 km/s on every Earth line
  // of the demo, so 100 km/s more along x (token 6) leaves at least 94 km/s: far above
  // 6.001. Ship 1's last event (the third Earth pair) is a flyby without a mass change.
  cases.push_back({"Error806_FastEarthDrop", "Error806", [](Scenario& s) {
                     const int i = pair_line(s, -3);
                     shift(s, i, 6, 100.0);
                     return fails(on_line("Error806", i));
                   }});
  cases.push_back({"Error806_FastEarthFlybyLosesOneKilogram", "Error806", [](Scenario& s) {
                     const int i = pair_line(s, -3, 2);
                     shift(s, i, 6, 100.0);
                     shift(s, i + 1, 9, -1.0);
                     return fails(on_line("Error806", i));
                   }});
  cases.push_back({"Error607_FastEarthFlybyWithinMassTolerance", "Error607", [](Scenario& s) {
                     // Half a gram is no drop: the reader takes the pair as an ordinary
                     // flyby, and the flyby check then finds the two excess speeds apart.
                     const int i = pair_line(s, -3, 2);
                     shift(s, i, 6, 100.0);
                     shift(s, i + 1, 9, -0.0005);
                     return fails("Error607. Data Error of the event of flyby on the line" +
                                  std::to_string(i + 1) +
                                  ": The magnitudes of the hyperbolic excess velocity before and "
                                  "after the flyby are different.\n");
                   }});
  cases.push_back({"Error806_ComesBeforeTheShortArc", "Error806", [](Scenario& s) {
                     const int i = pair_line(s, -3);
                     shift(s, i, 6, 100.0);
                     drop_arc_lines_before(s.lines, i, 9);
                     return fails(on_line("Error806", i - 9));
                   }});
}

// --- accepted variations of the file: the demo's own outcome ---

void add_accepted_cases(std::vector<ErrorCase>& cases) {
  const char* accepted = "Check successfully!";
  cases.push_back({"Accepted_CrLfLineEnds", accepted, [](Scenario& s) {
                     // A CR before every line break of both files changes nothing.
                     for (std::string& line : s.lines) line += "\r";
                     std::string catalogue;
                     for (char c : s.catalogue) catalogue += c == '\n' ? "\r\n" : std::string(1, c);
                     s.catalogue = catalogue;
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
                     const double t1 = token(s.lines[last_of_ship1], 2);
                     const double t5 = token(s.lines.back(), 2);
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
  add_file_cases(cases);
  add_line_cases(cases);
  add_structure_cases(cases);
  add_assembly_cases(cases);
  add_accepted_cases(cases);
  return cases;
}

}  // namespace kavren::test
