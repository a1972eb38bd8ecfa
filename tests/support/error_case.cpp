#include "support/error_case.h"

#include <cmath>
#include <cstdio>
#include <optional>
#include <sstream>
#include <stdexcept>

#include "support/e2e.h"

namespace kavren::test {

std::string Scenario::result_text() const {
  std::string text;
  for (const std::string& line : lines) text += line + "\n";
  return text + result_suffix;
}

namespace {

// The files kavren-synth writes for `what` ("demo", "suite") into a fresh folder,
// read from its subfolder `sub`.
struct Synthesised {
  Scenario scenario;
  std::optional<std::string> expected_out, expected_score;
};

Synthesised synthesise(const std::string& what, const std::string& sub) {
  TempDir dir;
  const RunResult made = run_in(dir.path(), KAVREN_SYNTH_BIN, {what, dir.path() + "/" + what});
  if (made.status != 0) throw std::runtime_error("kavren-synth " + what + " failed: " + made.err);
  const std::string folder = what + "/" + sub;
  Synthesised synth;
  synth.scenario.catalogue = dir.read(folder + "KAVREN_Asteroids_Data.txt").value();
  std::istringstream result(dir.read(folder + "Result.txt").value());
  std::string line;
  while (std::getline(result, line)) synth.scenario.lines.push_back(line);
  synth.expected_out = dir.read(folder + "expected_stdout.txt");
  synth.expected_score = dir.read(folder + "expected_ScoreData.txt");
  return synth;
}

const Synthesised& demo() {
  static const Synthesised demo = synthesise("demo", "");
  return demo;
}

}  // namespace

const Scenario& demo_scenario() {
  return demo().scenario;
}

const Expectation& demo_outcome() {
  static const Expectation outcome{demo().expected_out.value(), 0, demo().expected_score.value()};
  return outcome;
}

const Scenario& flyby_scenario() {
  static const Synthesised tour = synthesise("suite", "case4/");
  return tour.scenario;
}

std::vector<std::string> tokens_of(const std::string& line) {
  std::vector<std::string> tokens;
  std::string current;
  for (char c : line) {
    if (c == '\t' || c == ' ') {
      if (!current.empty()) tokens.push_back(current);
      current.clear();
    } else {
      current += c;
    }
  }
  if (!current.empty()) tokens.push_back(current);
  return tokens;
}

double token(const std::string& line, int k) {
  return std::stod(tokens_of(line).at(static_cast<std::size_t>(k)));
}

std::string with_token(const std::string& line, int k, const std::string& value) {
  std::vector<std::string> tokens = tokens_of(line);
  tokens.at(static_cast<std::size_t>(k)) = value;
  std::string joined;
  for (std::size_t j = 0; j < tokens.size(); ++j) joined += (j ? "\t" : "") + tokens[j];
  return joined;
}

std::string number(double x) {
  char text[64];
  std::snprintf(text, sizeof text, "%.17g", x);
  return text;
}

void set_token(Scenario& s, int i, int k, const std::string& value) {
  std::string& line = s.lines.at(static_cast<std::size_t>(i));
  line = with_token(line, k, value);
}

void shift(Scenario& s, int i, int k, double delta) {
  set_token(s, i, k, number(token(s.lines.at(static_cast<std::size_t>(i)), k) + delta));
}

int find_line(const std::vector<std::string>& lines, int id, int count, int from) {
  for (std::size_t i = static_cast<std::size_t>(from); i < lines.size(); ++i) {
    const std::vector<std::string> tokens = tokens_of(lines[i]);
    if (static_cast<int>(tokens.size()) == count && std::stoi(tokens[1]) == id) {
      return static_cast<int>(i);
    }
  }
  throw std::runtime_error("no line with event ID " + std::to_string(id));
}

std::vector<ErrorCase> all_error_cases() {
  std::vector<ErrorCase> cases = input_error_cases();
  for (ErrorCase& c : event_error_cases()) cases.push_back(std::move(c));
  for (ErrorCase& c : physics_error_cases()) cases.push_back(std::move(c));
  return cases;
}

ErrorCase case_named(const std::string& name) {
  static const std::vector<ErrorCase> cases = all_error_cases();
  for (const ErrorCase& c : cases) {
    if (c.name == name) return c;
  }
  throw std::runtime_error("no case " + name);
}

int pair_line(const Scenario& s, int id, int nth) {
  if (nth < 0) {
    for (int i = static_cast<int>(s.lines.size()) - 1; i > 0; --i) {
      const std::vector<std::string> tokens = tokens_of(s.lines[static_cast<std::size_t>(i)]);
      if (tokens.size() == 10 && std::stoi(tokens[1]) == id) return i - 1;
    }
    throw std::runtime_error("no line with event ID " + std::to_string(id));
  }
  int i = find_line(s.lines, id);
  for (int k = 0; k < nth; ++k) i = find_line(s.lines, id, 10, i + 2);
  return i;
}

void move_along_track(Scenario& s, int id, int n, double km) {
  double r[3], v[3];
  for (int j = 0; j < 3; ++j) {
    r[j] = token(s.lines.at(n), 3 + j);
    v[j] = token(s.lines.at(n), 6 + j);
  }
  const double dt = km / std::sqrt(v[0] * v[0] + v[1] * v[1] + v[2] * v[2]);  // seconds
  for (int l = n; l <= n + 1; ++l) {
    for (int j = 0; j < 3; ++j)
      s.lines[l] = with_token(s.lines[l], 3 + j, number(r[j] + v[j] * dt));
  }
  // Catalogue row of the asteroid, after the header: ID, epoch, a [AU], e, i, node,
  // periapsis, M0 [deg].
  std::vector<std::string> rows;
  std::size_t begin = 0;
  while (begin < s.catalogue.size()) {
    std::size_t end = s.catalogue.find('\n', begin);
    if (end == std::string::npos) end = s.catalogue.size();
    rows.push_back(s.catalogue.substr(begin, end - begin));
    begin = end + 1;
  }
  std::string& row = rows.at(static_cast<std::size_t>(id));
  std::vector<std::string> cols = tokens_of(row);
  if (cols.size() != 8 || cols[0] != std::to_string(id)) throw std::runtime_error("catalogue row");
  const double a = std::stod(cols[2]) * 149597870.691;
  const double mean_motion = std::sqrt(132712440018.0 / (a * a * a));
  cols[7] = number(std::stod(cols[7]) + mean_motion * dt / 0.017453292519943295);
  row.clear();
  for (std::size_t j = 0; j < cols.size(); ++j) row += (j ? "\t" : "") + cols[j];
  s.catalogue.clear();
  for (const std::string& text : rows) s.catalogue += text + "\n";
}

}  // namespace kavren::test
