#include "synth/text.h"

#include <cstdio>
#include <cstdlib>
#include <sstream>
#include <vector>

namespace synth {

std::string fmt(double x) {
  char buffer[40];
  std::snprintf(buffer, sizeof buffer, "%.17g", x);
  return buffer;
}

double reparse(double x) {
  return std::strtod(fmt(x).c_str(), nullptr);
}

namespace {

std::vector<std::string> tokens(const std::string& line) {
  std::istringstream in(line);
  std::vector<std::string> out;
  for (std::string t; in >> t;) out.push_back(t);
  return out;
}

}  // namespace

std::string late_arrivals(const std::string& result) {
  std::vector<std::vector<std::string>> lines;
  std::istringstream in(result);
  for (std::string line; std::getline(in, line);) lines.push_back(tokens(line));
  // The first line of an event pair (not a launch) that follows a burning-arc line.
  for (std::size_t k = 1; k < lines.size(); ++k) {
    if (lines[k - 1].size() == 6 && lines[k].size() == 10 && lines[k][1] != "0") {
      lines[k][2] = "99999";
    }
  }
  std::string out;
  for (const std::vector<std::string>& line : lines) {
    for (std::size_t i = 0; i < line.size(); ++i) out += (i ? "\t" : "") + line[i];
    out += "\n";
  }
  return out;
}

}  // namespace synth
