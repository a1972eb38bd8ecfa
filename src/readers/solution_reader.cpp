#include "readers/solution_reader.h"

#include <climits>
#include <iostream>
#include <string>
#include <string_view>

#include "readers/file_bytes.h"
#include "readers/ship_assembly.h"
#include "readers/tokenizer.h"
#include "records/announce.h"
#include "records/limits.h"
#include "records/termination.h"

namespace kavren {
namespace {

// The lines of a text as getline delivers them: a last line without a line break is
// still a line; nothing follows a final line break.
class TextLines {
 public:
  explicit TextLines(std::string_view text) : text_(text) {}
  bool next(std::string_view& line) {
    if (pos_ >= text_.size()) return false;
    const std::size_t end = text_.find('\n', pos_);
    const std::size_t stop = end == std::string_view::npos ? text_.size() : end;
    line = text_.substr(pos_, stop - pos_);
    pos_ = end == std::string_view::npos ? text_.size() : end + 1;
    return true;
  }

 private:
  std::string_view text_;
  std::size_t pos_ = 0;
};

// Lists of line indices by event kind, in line order.
struct EventLists {
  std::vector<int> launches, venus, earth, mars, rendezvous, ship_starts;
  std::vector<int> rendezvous_ids;  // the asteroid of each rendezvous line
  int previous_ship = 0;  // ship ID of the line before
};

// A structural fault: the reading ends.
bool refuse_line(Findings& findings, const char* head, int index, const char* tail) {
  findings.fail(Rule::count, line_message(head, printed_line(index), tail),
                {printed_line(index)}, 0);
  return false;
}

bool refuse(Findings& findings, const char* message) {
  findings.fail(Rule::count, std::string(message) + "\n", {}, 0);
  return false;
}

// Reads, checks and classifies one line (steps in the order the messages take).
bool read_line(std::string_view raw, int index, EventLists& lists,
               std::vector<std::string_view>& tokens, Findings& findings) {
  static constexpr const char* kA09 = "ErrorA09. File Format Error on the line ";
  const std::string_view text = trimmed_line(raw);
  if (text.empty()) return refuse_line(findings, kA09, index, ": This line is empty!");
  // The length rule measures the line as read: a trailing CR counts.
  if (raw.size() < 12) {
    return refuse_line(findings, kA09, index, ": The number of data in this line is unreasonable.");
  }
  tokenize_line(text, tokens);
  // Only a line of 10 or 6 tokens has an event ID to read; a line of one token (a
  // long number) has no second token.
  if (tokens.size() != 10 && tokens.size() != 6) {
    return refuse_line(findings, kA09, index, ": The number of data in this line is unreasonable.");
  }
  const int id = parse_int(tokens[1]);
  if (tokens.size() == 10) {
    if (id == 0) {
      lists.launches.push_back(index);
    } else if (id == -2) {
      lists.venus.push_back(index);
    } else if (id == -3) {
      lists.earth.push_back(index);
    } else if (id == -4) {
      lists.mars.push_back(index);
    } else if (id >= 1 && id <= 60000) {
      lists.rendezvous.push_back(index);
      lists.rendezvous_ids.push_back(id);
    } else {
      return refuse_line(findings, "ErrorA10. File Format Error on the line", index,
                         ": The event ID is unreasonable.");
    }
  } else if (id != -1) {
    return refuse_line(findings, "ErrorA11. File Format Error on the line", index,
                       ": The event ID of the burning arcs is wrong.");
  }

  // A ship is a maximal run of lines with the same ship ID.
  const int ship = parse_int(tokens[0]);
  if (ship < 1) {
    return refuse_line(findings, "ErrorA12. File Format Error on the line", index,
                       ": The ID of the ship is wrong.");
  }
  if (index == 0 || ship != lists.previous_ship) lists.ship_starts.push_back(index);
  lists.previous_ship = ship;

  // An epoch outside the mission is a finding, not a fault of the file's structure.
  const double epoch = parse_double(tokens[2]);
  const long long line = printed_line(index);
  const int ordinal = static_cast<int>(lists.ship_starts.size());
  return findings.check(Rule::epoch_start, !(epoch < kMissionStartMjd), epoch,
                        kMissionStartMjd, {line}, ordinal,
                        [&] {
                          return line_message("Error001. Event Time Error on the line", line,
                                              ": The epoch is earlier than the mission's "
                                              "initial time (64328 MJD).");
                        }) &&
         findings.check(Rule::epoch_end, !(epoch > kMissionEndMjd), epoch, kMissionEndMjd, {line},
                        ordinal, [&] {
                          return line_message("Error002. Event Time Error on the line", line,
                                              ": The epoch is later than the mission's end "
                                              "time (69807 MJD).");
                        });
}

// The deadline is looked at once every this many lines.
constexpr int kLinesBetweenDeadlineChecks = 4096;

bool read_lines(std::string_view text, EventLists& lists, int& line_count, Findings& findings,
                const DeadlineClock::time_point* deadline) {
  TextLines source(text);
  std::vector<std::string_view> tokens;
  tokens.reserve(16);
  std::string_view raw;
  int index = 0;
  while (source.next(raw)) {
    // Line numbers are 32-bit; a file of more lines is refused at the last number
    // that can still be printed.
    if (index == INT_MAX - 1) {
      return refuse_line(findings, "ErrorA09. File Format Error on the line ", index,
                         ": The number of data in this line is unreasonable.");
    }
    if (index % kLinesBetweenDeadlineChecks == 0) honour_deadline(deadline);
    if (!read_line(raw, index, lists, tokens, findings)) return false;
    ++index;
  }
  line_count = index;
  return true;
}

// Every pair (2k, 2k+1) of a flyby list must be two adjacent lines.
bool check_pairs(const std::vector<int>& list, const char* odd_message, const char* head,
                 const char* tail, Findings& findings) {
  if (list.size() % 2 != 0) return refuse(findings, odd_message);
  for (std::size_t k = 0; k < list.size(); k += 2) {
    if (list[k + 1] != list[k] + 1) return refuse_line(findings, head, list[k + 1], tail);
  }
  return true;
}

bool check_structure(const EventLists& lists, Findings& findings) {
  if (lists.launches.size() != 2 * lists.ship_starts.size()) {
    return refuse(findings,
                  "ErrorA13. File Format Error: The number of mining ships does not match the "
                  "number of launch events.");
  }
  for (std::size_t k = 0; k < lists.ship_starts.size(); ++k) {
    if (lists.ship_starts[k] != lists.launches[2 * k]) {
      return refuse_line(findings, "ErrorA14. File Format Error on the line", lists.launches[2 * k],
                         ": The event ID of the launch is wrong.");
    }
    if (lists.launches[2 * k + 1] != lists.launches[2 * k] + 1) {
      return refuse_line(findings, "ErrorA15. File Format Error on the line", lists.launches[2 * k + 1],
                         ": The event IDs of one launch do not appear in two adjacent lines.");
    }
  }
  if (!check_pairs(lists.venus,
                   "ErrorA16. File Format Error: The number of the event IDs of the Venus "
                   "flybys is odd.",
                   "ErrorA17. File Format Error on the line",
                   ": The event IDs of one Venus flyby do not appear in two adjacent lines.",
                   findings)) {
    return false;
  }
  if (!check_pairs(lists.earth,
                   "ErrorA18. File Format Error: The number of the event IDs of the Earth "
                   "flybys is odd.",
                   "ErrorA19. File Format Error on the line",
                   ": The event IDs of one Earth flyby do not appear in two adjacent lines.",
                   findings)) {
    return false;
  }
  if (!check_pairs(lists.mars,
                   "ErrorA20. File Format Error: The number of the event IDs of the Mars "
                   "flybys is odd.",
                   "ErrorA21. File Format Error on the line",
                   ": The event IDs of one Mars flyby do not appear in two adjacent lines.",
                   findings)) {
    return false;
  }
  const std::vector<int>& visits = lists.rendezvous;
  if (visits.size() % 2 != 0) {
    return refuse(findings,
                  "ErrorA22. File Format Error: The number of the event IDs of the "
                  "rendezvouses is odd.");
  }
  for (std::size_t k = 0; k < visits.size(); k += 2) {
    const int first = visits[k];
    const int second = visits[k + 1];
    if (second != first + 1 || lists.rendezvous_ids[k + 1] != lists.rendezvous_ids[k]) {
      return refuse_line(findings, "ErrorA23. File Format Error on the line", second,
                         ": The event IDs of one rendezvous do not appear in two adjacent "
                         "lines.");
    }
  }
  return true;
}

// Second reading of the text: every ship built from its run of lines.
bool assemble_ships(std::string_view text, const std::vector<int>& starts, int line_count,
                    std::vector<ShipClass>& ships, Findings& findings,
                    const DeadlineClock::time_point* deadline) {
  TextLines source(text);
  std::string_view raw;
  int index = 0;
  for (std::size_t k = 0; k < starts.size(); ++k) {
    const int end = k + 1 < starts.size() ? starts[k + 1] : line_count;
    ShipClass ship;
    ShipAssembler assembler(static_cast<int>(k) + 1, ship, findings, text);
    for (; index < end && source.next(raw); ++index) {
      if (index % kLinesBetweenDeadlineChecks == 0) honour_deadline(deadline);
      if (!assembler.add_line(index, trimmed_line(raw))) return false;
    }
    assembler.finish();
    ships.push_back(std::move(ship));
  }
  return true;
}

}  // namespace

bool read_solution(std::string_view text, std::vector<ShipClass>& ships, int& num_ships,
                   Findings& findings, const DeadlineClock::time_point* deadline) {
  if (text.empty()) {
    return refuse(findings, "ErrorA02. File Open Error: The solution file is empty.");
  }
  EventLists lists;
  int line_count = 0;
  if (!read_lines(text, lists, line_count, findings, deadline)) return false;
  if (!check_structure(lists, findings)) return false;
  num_ships = static_cast<int>(lists.ship_starts.size());
  ships.reserve(ships.size() + lists.ship_starts.size());
  return assemble_ships(text, lists.ship_starts, line_count, ships, findings, deadline);
}

}  // namespace kavren

bool ReadSolutionFile(std::vector<ShipClass>& ships, int& num_ships, const char* file_name) {
  std::string text;
  if (!kavren::read_file_bytes(file_name, text)) {
    std::cout << "ErrorA01. File Open Error: Cannot find the solution file." << std::endl;
    kavren::end_run(1);
  }
  kavren::Findings findings(true);
  kavren::read_solution(text, ships, num_ships, findings);
  return kavren::announce(findings);
}
