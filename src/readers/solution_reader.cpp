#include "readers/solution_reader.h"

#include <climits>
#include <optional>
#include <string>
#include <string_view>

#include "kavren/limits.h"
#include "readers/file_bytes.h"
#include "readers/ship_assembly.h"
#include "readers/tokenizer.h"

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

// A structural fault: the reading ends.
bool refuse_line(Findings& findings, Rule rule, const char* head, int index, const char* tail) {
  findings.fail(rule, line_message(head, printed_line(index), tail), {printed_line(index)}, 0);
  return false;
}

bool refuse(Findings& findings, Rule rule, const char* message) {
  findings.fail(rule, std::string(message) + "\n", {}, 0);
  return false;
}

// What a line is, once its own checks passed.
struct LineClass {
  int event_id = 0;
  int ship = 0;
  bool event = false;  // an event line (10 tokens), else a burning-arc line
};

// Checks and classifies one line (steps in the order the messages take); false on a
// structural fault, which ends the reading.
bool classify_line(std::string_view raw, int index, std::vector<std::string_view>& tokens,
                   Findings& findings, LineClass& line) {
  static constexpr const char* kA09 = "ErrorA09. File Format Error on the line ";
  const std::string_view text = trimmed_line(raw);
  if (text.empty())
    return refuse_line(findings, Rule::line_format, kA09, index, ": This line is empty!");
  // The length rule measures the line as read: a trailing CR counts.
  if (raw.size() < 12) {
    return refuse_line(findings, Rule::line_format, kA09, index,
                       ": The number of data in this line is unreasonable.");
  }
  tokenize_line(text, tokens);
  // Only a line of 10 or 6 tokens has an event ID to read; a line of one token (a
  // long number) has no second token.
  if (tokens.size() != 10 && tokens.size() != 6) {
    return refuse_line(findings, Rule::line_format, kA09, index,
                       ": The number of data in this line is unreasonable.");
  }
  line.event = tokens.size() == 10;
  line.event_id = parse_int(tokens[1]);
  const int id = line.event_id;
  if (line.event) {
    if (id != 0 && id != -2 && id != -3 && id != -4 && !(id >= 1 && id <= 60000)) {
      return refuse_line(findings, Rule::event_id, "ErrorA10. File Format Error on the line", index,
                         ": The event ID is unreasonable.");
    }
  } else if (id != -1) {
    return refuse_line(findings, Rule::arc_event_id, "ErrorA11. File Format Error on the line",
                       index, ": The event ID of the burning arcs is wrong.");
  }
  line.ship = parse_int(tokens[0]);
  if (line.ship < 1) {
    return refuse_line(findings, Rule::ship_id, "ErrorA12. File Format Error on the line", index,
                       ": The ID of the ship is wrong.");
  }
  return true;
}

// An event line joins the list of its kind.
void list_line(const LineClass& line, int index, EventLists& lists) {
  if (!line.event) return;
  const int id = line.event_id;
  if (id == 0) {
    lists.launches.push_back(index);
  } else if (id == -2) {
    lists.venus.push_back(index);
  } else if (id == -3) {
    lists.earth.push_back(index);
  } else if (id == -4) {
    lists.mars.push_back(index);
  } else {
    lists.rendezvous.push_back(index);
    lists.rendezvous_ids.push_back(id);
  }
}

// The epoch of a line of the `ordinal`-th ship: outside the mission is a finding, not a
// fault of the file's structure. False when the collector says to stop.
bool check_line_epoch(const std::vector<std::string_view>& tokens, int index, int ordinal,
                      Findings& findings) {
  const double epoch = parse_double(tokens[2]);
  const long long line = printed_line(index);
  return findings.check(Rule::epoch_start, !(epoch < kMissionStartMjd), epoch, kMissionStartMjd,
                        {line}, ordinal,
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

// Reads, checks and classifies one line of the file. A ship is a maximal run of lines
// with the same ship ID.
bool read_line(std::string_view raw, int index, EventLists& lists,
               std::vector<std::string_view>& tokens, Findings& findings) {
  LineClass line;
  if (!classify_line(raw, index, tokens, findings, line)) return false;
  list_line(line, index, lists);
  if (index == 0 || line.ship != lists.previous_ship) lists.ship_starts.push_back(index);
  lists.previous_ship = line.ship;
  return check_line_epoch(tokens, index, static_cast<int>(lists.ship_starts.size()), findings);
}

// The deadline is looked at once every this many lines.
constexpr int kLinesBetweenDeadlineChecks = 4096;

// The ship being assembled, handed to the sink when its last line has been read.
class ShipInProgress {
 public:
  ShipInProgress(ShipSink& sink, bool stop_at_first, bool arcs_in_text)
      : sink_(sink), stop_at_first_(stop_at_first), arcs_in_text_(arcs_in_text) {}

  bool assembling() const { return !ended_; }
  void start(int ordinal) {
    ship_ = ShipClass();
    found_ = Findings(stop_at_first_);
    assembler_.emplace(ordinal, ship_, found_, arcs_in_text_);
  }
  void add(int index, std::string_view text, const std::vector<std::string_view>& tokens) {
    if (!assembler_) return;
    if (!assembler_->add_line(index, text, tokens)) {
      ended_ = true;
      hand_over();
    }
  }
  void finish() {
    if (!assembler_) return;
    assembler_->finish();
    hand_over();
  }

 private:
  void hand_over() {
    assembler_.reset();
    sink_.ship_read(std::move(ship_), std::move(found_), ended_);
  }

  ShipSink& sink_;
  bool stop_at_first_;
  bool arcs_in_text_;
  ShipClass ship_;
  Findings found_{true};
  std::optional<ShipAssembler> assembler_;
  bool ended_ = false;
};

bool read_lines(std::string_view text, EventLists& lists, Findings& findings, ShipInProgress& ship,
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
      return refuse_line(findings, Rule::line_format, "ErrorA09. File Format Error on the line ",
                         index, ": The number of data in this line is unreasonable.");
    }
    if (index % kLinesBetweenDeadlineChecks == 0) honour_deadline(deadline);
    const std::size_t ships_before = lists.ship_starts.size();
    if (!read_line(raw, index, lists, tokens, findings)) return false;
    if (ship.assembling()) {
      if (lists.ship_starts.size() != ships_before) {
        ship.finish();
        ship.start(static_cast<int>(lists.ship_starts.size()));
      }
      ship.add(index, trimmed_line(raw), tokens);
    }
    ++index;
  }
  if (ship.assembling()) ship.finish();
  return true;
}

// Every pair (2k, 2k+1) of a flyby list must be two adjacent lines.
bool check_pairs(const std::vector<int>& list, Rule odd, const char* odd_message, Rule apart,
                 const char* head, const char* tail, Findings& findings) {
  if (list.size() % 2 != 0) return refuse(findings, odd, odd_message);
  for (std::size_t k = 0; k < list.size(); k += 2) {
    if (list[k + 1] != list[k] + 1) return refuse_line(findings, apart, head, list[k + 1], tail);
  }
  return true;
}

}  // namespace

bool check_structure(const EventLists& lists, Findings& findings) {
  if (lists.launches.size() != 2 * lists.ship_starts.size()) {
    return refuse(findings, Rule::launch_count,
                  "ErrorA13. File Format Error: The number of mining ships does not match the "
                  "number of launch events.");
  }
  for (std::size_t k = 0; k < lists.ship_starts.size(); ++k) {
    if (lists.ship_starts[k] != lists.launches[2 * k]) {
      return refuse_line(findings, Rule::launch_start, "ErrorA14. File Format Error on the line",
                         lists.launches[2 * k], ": The event ID of the launch is wrong.");
    }
    if (lists.launches[2 * k + 1] != lists.launches[2 * k] + 1) {
      return refuse_line(findings, Rule::launch_lines, "ErrorA15. File Format Error on the line",
                         lists.launches[2 * k + 1],
                         ": The event IDs of one launch do not appear in two adjacent lines.");
    }
  }
  if (!check_pairs(lists.venus, Rule::venus_count,
                   "ErrorA16. File Format Error: The number of the event IDs of the Venus "
                   "flybys is odd.",
                   Rule::venus_lines, "ErrorA17. File Format Error on the line",
                   ": The event IDs of one Venus flyby do not appear in two adjacent lines.",
                   findings)) {
    return false;
  }
  if (!check_pairs(lists.earth, Rule::earth_count,
                   "ErrorA18. File Format Error: The number of the event IDs of the Earth "
                   "flybys is odd.",
                   Rule::earth_lines, "ErrorA19. File Format Error on the line",
                   ": The event IDs of one Earth flyby do not appear in two adjacent lines.",
                   findings)) {
    return false;
  }
  if (!check_pairs(lists.mars, Rule::mars_count,
                   "ErrorA20. File Format Error: The number of the event IDs of the Mars "
                   "flybys is odd.",
                   Rule::mars_lines, "ErrorA21. File Format Error on the line",
                   ": The event IDs of one Mars flyby do not appear in two adjacent lines.",
                   findings)) {
    return false;
  }
  const std::vector<int>& visits = lists.rendezvous;
  if (visits.size() % 2 != 0) {
    return refuse(findings, Rule::rendezvous_count_odd,
                  "ErrorA22. File Format Error: The number of the event IDs of the "
                  "rendezvouses is odd.");
  }
  for (std::size_t k = 0; k < visits.size(); k += 2) {
    const int first = visits[k];
    const int second = visits[k + 1];
    if (second != first + 1 || lists.rendezvous_ids[k + 1] != lists.rendezvous_ids[k]) {
      return refuse_line(findings, Rule::rendezvous_lines,
                         "ErrorA23. File Format Error on the line", second,
                         ": The event IDs of one rendezvous do not appear in two adjacent "
                         "lines.");
    }
  }
  return true;
}

bool scan_solution(std::string_view text, Findings& findings, int& num_ships, ShipSink& sink,
                   const DeadlineClock::time_point* deadline, bool arcs_in_text) {
  if (text.empty()) {
    return refuse(findings, Rule::empty_solution,
                  "ErrorA02. File Open Error: The solution file is empty.");
  }
  EventLists lists;
  ShipInProgress ship(sink, findings.stop_at_first(), arcs_in_text);
  if (!read_lines(text, lists, findings, ship, deadline)) return false;
  if (findings.stopped()) return false;
  if (!check_structure(lists, findings)) return false;
  num_ships = static_cast<int>(lists.ship_starts.size());
  return true;
}

bool read_solution(std::string_view text, std::vector<ShipClass>& ships, int& num_ships,
                   Findings& findings, const DeadlineClock::time_point* deadline) {
  struct Collect : ShipSink {
    std::vector<ShipClass>& ships;
    std::vector<Findings> found;
    bool ended = false;
    explicit Collect(std::vector<ShipClass>& s) : ships(s) {}
    void ship_read(ShipClass&& ship, Findings&& assembly, bool end) override {
      found.push_back(std::move(assembly));
      ended = end;
      if (!end) ships.push_back(std::move(ship));
    }
  } collect(ships);
  if (!scan_solution(text, findings, num_ships, collect, deadline)) return false;
  for (Findings& assembly : collect.found) {
    findings.merge(std::move(assembly));
    if (findings.stopped()) return false;
  }
  return !collect.ended;
}

void read_ship_lines(std::string_view text, int first_index, int ordinal, bool stop_at_first,
                     ShipLines& out) {
  out = ShipLines();
  out.found = Findings(stop_at_first);
  out.assembly = Findings(stop_at_first);
  std::optional<ShipAssembler> assembler;
  assembler.emplace(ordinal, out.ship, out.assembly, true);
  TextLines source(text);
  std::vector<std::string_view> tokens;
  tokens.reserve(16);
  std::string_view raw;
  int ship_id = 0;
  for (int index = first_index; source.next(raw); ++index) {
    // Line numbers are 32-bit, as in a whole file.
    if (index == INT_MAX - 1) {
      refuse_line(out.found, Rule::line_format, "ErrorA09. File Format Error on the line ", index,
                  ": The number of data in this line is unreasonable.");
      out.reading_ended = true;
      return;
    }
    LineClass line;
    if (!classify_line(raw, index, tokens, out.found, line)) {
      out.reading_ended = true;
      ++out.lines;
      return;
    }
    if (out.lines > 0 && line.ship != ship_id) break;  // the next ship's first line
    if (out.lines == 0) {
      ship_id = line.ship;
      out.lists.ship_starts.push_back(index);
    }
    out.lists.previous_ship = line.ship;
    list_line(line, index, out.lists);
    ++out.lines;
    out.bytes = static_cast<std::size_t>(raw.data() + raw.size() - text.data());
    if (out.bytes < text.size()) ++out.bytes;  // its line break
    if (!check_line_epoch(tokens, index, ordinal, out.found)) {
      out.reading_ended = true;
      return;
    }
    if (assembler && !assembler->add_line(index, trimmed_line(raw), tokens)) {
      out.assembly_ended = true;
      assembler.reset();
    }
  }
  if (assembler) assembler->finish();
}

}  // namespace kavren
