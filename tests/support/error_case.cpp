#include "support/error_case.h"

#include <cmath>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <memory>
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

std::string read_all(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) throw std::runtime_error("cannot read " + path);
  return std::string((std::istreambuf_iterator<char>(in)), {});
}

}  // namespace

const Scenario& demo_scenario() {
  static const std::unique_ptr<Scenario> demo = [] {
    TempDir dir;
    const RunResult made = run_in(dir.path(), KAVREN_SYNTH_BIN, {"demo", dir.path() + "/demo"});
    if (made.status != 0) throw std::runtime_error("kavren-synth demo failed: " + made.err);
    auto scenario = std::make_unique<Scenario>();
    scenario->catalogue = read_all(dir.path() + "/demo/KAVREN_Asteroids_Data.txt");
    std::istringstream result(read_all(dir.path() + "/demo/Result.txt"));
    std::string line;
    while (std::getline(result, line)) scenario->lines.push_back(line);
    return scenario;
  }();
  return *demo;
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

int find_line(const std::vector<std::string>& lines, int id, int count, int from) {
  for (std::size_t i = static_cast<std::size_t>(from); i < lines.size(); ++i) {
    const std::vector<std::string> tokens = tokens_of(lines[i]);
    if (static_cast<int>(tokens.size()) == count && std::stoi(tokens[1]) == id) {
      return static_cast<int>(i);
    }
  }
  throw std::runtime_error("no line with event ID " + std::to_string(id));
}

void move_along_track(Scenario& s, int id, int n, double km) {
  double r[3], v[3];
  for (int j = 0; j < 3; ++j) {
    r[j] = std::stod(tokens_of(s.lines.at(n))[3 + j]);
    v[j] = std::stod(tokens_of(s.lines.at(n))[6 + j]);
  }
  const double dt = km / std::sqrt(v[0] * v[0] + v[1] * v[1] + v[2] * v[2]);  // seconds
  for (int l = n; l <= n + 1; ++l) {
    for (int j = 0; j < 3; ++j) s.lines[l] = with_token(s.lines[l], 3 + j, number(r[j] + v[j] * dt));
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
