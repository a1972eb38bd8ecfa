#include "e2e/error_case.h"

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

}  // namespace kavren::test
