#include "readers/solution_reader.h"

#include <climits>
#include <cstring>
#include <iostream>
#include <string_view>

#include "readers/line_source.h"
#include "readers/ship_assembly.h"
#include "readers/tokenizer.h"
#include "records/termination.h"

namespace kavren {
namespace {

constexpr double kMissionStart = 64328.0;
constexpr double kMissionEnd = 69807.0;

// Lists of line indices by event kind, in line order.
struct EventLists {
  std::vector<int> launches, venus, earth, mars, rendezvous, ship_starts;
  std::vector<int> rendezvous_ids;  // the asteroid of each rendezvous line
  int previous_ship = 0;  // ship ID of the line before
};

bool refuse_line(const char* head, int index, const char* tail) {
  std::cout << head << index + 1 << tail << std::endl;
  return false;
}

// Reads, checks and classifies one line (steps in the order the messages take).
bool read_line(std::string_view raw, int index, EventLists& lists,
               std::vector<std::string_view>& tokens) {
  static constexpr const char* kA09 = "ErrorA09. File Format Error on the line ";
  const std::string_view text = trimmed_line(raw);
  if (text.empty()) return refuse_line(kA09, index, ": This line is empty!");
  // The length rule measures the line as read: a trailing CR counts.
  if (raw.size() < 12) {
    return refuse_line(kA09, index, ": The number of data in this line is unreasonable.");
  }
  tokenize_line(text, tokens);
  // Only a line of 10 or 6 tokens has an event ID to read; a line of one token (a
  // long number) has no second token.
  if (tokens.size() != 10 && tokens.size() != 6) {
    return refuse_line(kA09, index, ": The number of data in this line is unreasonable.");
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
      return refuse_line("ErrorA10. File Format Error on the line", index,
                         ": The event ID is unreasonable.");
    }
  } else if (id != -1) {
    return refuse_line("ErrorA11. File Format Error on the line", index,
                       ": The event ID of the burning arcs is wrong.");
  }

  // A ship is a maximal run of lines with the same ship ID.
  const int ship = parse_int(tokens[0]);
  if (ship < 1) {
    return refuse_line("ErrorA12. File Format Error on the line", index,
                       ": The ID of the ship is wrong.");
  }
  if (index == 0 || ship != lists.previous_ship) lists.ship_starts.push_back(index);
  lists.previous_ship = ship;

  const double epoch = parse_double(tokens[2]);
  if (epoch < kMissionStart) {
    return refuse_line("Error001. Event Time Error on the line", index,
                       ": The epoch is earlier than the mission's initial time (64328 MJD).");
  }
  if (epoch > kMissionEnd) {
    return refuse_line("Error002. Event Time Error on the line", index,
                       ": The epoch is later than the mission's end time (69807 MJD).");
  }
  return true;
}

bool read_lines(LineSource& source, EventLists& lists, int& line_count) {
  std::vector<std::string_view> tokens;
  tokens.reserve(16);
  std::string_view raw;
  int index = 0;
  while (source.next(raw)) {
    // Line numbers are 32-bit; a file of more lines is refused at the last number
    // that can still be printed.
    if (index == INT_MAX - 1) {
      return refuse_line("ErrorA09. File Format Error on the line ", index,
                         ": The number of data in this line is unreasonable.");
    }
    if (!read_line(raw, index, lists, tokens)) return false;
    ++index;
  }
  line_count = index;
  return true;
}

// Every pair (2k, 2k+1) of a flyby list must be two adjacent lines.
bool check_pairs(const std::vector<int>& list, const char* odd_message, const char* head,
                 const char* tail) {
  if (list.size() % 2 != 0) {
    std::cout << odd_message << std::endl;
    return false;
  }
  for (std::size_t k = 0; k < list.size(); k += 2) {
    if (list[k + 1] != list[k] + 1) return refuse_line(head, list[k + 1], tail);
  }
  return true;
}

bool check_structure(const EventLists& lists) {
  if (lists.launches.size() != 2 * lists.ship_starts.size()) {
    std::cout << "ErrorA13. File Format Error: The number of mining ships does not match the "
                 "number of launch events."
              << std::endl;
    return false;
  }
  for (std::size_t k = 0; k < lists.ship_starts.size(); ++k) {
    if (lists.ship_starts[k] != lists.launches[2 * k]) {
      return refuse_line("ErrorA14. File Format Error on the line", lists.launches[2 * k],
                         ": The event ID of the launch is wrong.");
    }
    if (lists.launches[2 * k + 1] != lists.launches[2 * k] + 1) {
      return refuse_line("ErrorA15. File Format Error on the line", lists.launches[2 * k + 1],
                         ": The event IDs of one launch do not appear in two adjacent lines.");
    }
  }
  if (!check_pairs(lists.venus,
                   "ErrorA16. File Format Error: The number of the event IDs of the Venus "
                   "flybys is odd.",
                   "ErrorA17. File Format Error on the line",
                   ": The event IDs of one Venus flyby do not appear in two adjacent lines.")) {
    return false;
  }
  if (!check_pairs(lists.earth,
                   "ErrorA18. File Format Error: The number of the event IDs of the Earth "
                   "flybys is odd.",
                   "ErrorA19. File Format Error on the line",
                   ": The event IDs of one Earth flyby do not appear in two adjacent lines.")) {
    return false;
  }
  if (!check_pairs(lists.mars,
                   "ErrorA20. File Format Error: The number of the event IDs of the Mars "
                   "flybys is odd.",
                   "ErrorA21. File Format Error on the line",
                   ": The event IDs of one Mars flyby do not appear in two adjacent lines.")) {
    return false;
  }
  const std::vector<int>& visits = lists.rendezvous;
  if (visits.size() % 2 != 0) {
    std::cout << "ErrorA22. File Format Error: The number of the event IDs of the "
                 "rendezvouses is odd."
              << std::endl;
    return false;
  }
  for (std::size_t k = 0; k < visits.size(); k += 2) {
    const int first = visits[k];
    const int second = visits[k + 1];
    if (second != first + 1 || lists.rendezvous_ids[k + 1] != lists.rendezvous_ids[k]) {
      return refuse_line("ErrorA23. File Format Error on the line", second,
                         ": The event IDs of one rendezvous do not appear in two adjacent "
                         "lines.");
    }
  }
  return true;
}

// Second reading of the file: every ship built from its run of lines.
bool assemble_ships(LineSource& source, const std::vector<int>& starts, int line_count,
                    std::vector<ShipClass>& ships) {
  source.rewind();
  std::string_view raw;
  int index = 0;
  for (std::size_t k = 0; k < starts.size(); ++k) {
    const int end = k + 1 < starts.size() ? starts[k + 1] : line_count;
    ShipClass ship;
    ShipAssembler assembler(static_cast<int>(k) + 1, ship);
    for (; index < end && source.next(raw); ++index) {
      if (!assembler.add_line(index, trimmed_line(raw))) return false;
    }
    assembler.finish();
    ships.push_back(std::move(ship));
  }
  return true;
}

}  // namespace
}  // namespace kavren

bool ReadSolutionFile(std::vector<ShipClass>& ships, int& num_ships, const char* file_name) {
  kavren::LineSource source(file_name);
  if (!source.is_open()) {
    std::cout << "ErrorA01. File Open Error: Cannot find the solution file." << std::endl;
    kavren::end_run(1);
  }
  if (source.empty()) {
    std::cout << "ErrorA02. File Open Error: The solution file is empty." << std::endl;
    return false;
  }

  kavren::EventLists lists;
  int line_count = 0;
  if (!kavren::read_lines(source, lists, line_count)) return false;
  if (!kavren::check_structure(lists)) return false;
  num_ships = static_cast<int>(lists.ship_starts.size());
  ships.reserve(ships.size() + lists.ship_starts.size());
  return kavren::assemble_ships(source, lists.ship_starts, line_count, ships);
}
