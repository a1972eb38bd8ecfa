#include "report/polish_hint.h"

#include <cmath>
#include <cstdlib>
#include <set>
#include <string>
#include <utility>

namespace kavren::report {
namespace {

// The line's tokens, split on tabs and blanks.
std::vector<std::string> tokens_of(std::string_view line) {
  std::vector<std::string> tokens;
  std::size_t k = 0;
  while (k < line.size()) {
    while (k < line.size() && (line[k] == ' ' || line[k] == '\t' || line[k] == '\r')) ++k;
    const std::size_t start = k;
    while (k < line.size() && line[k] != ' ' && line[k] != '\t' && line[k] != '\r') ++k;
    if (k > start) tokens.emplace_back(line.substr(start, k - start));
  }
  return tokens;
}

// The burning-arc lines just before `end` (1-based) thrust somewhere.
bool arc_thrusts(const std::vector<std::string_view>& lines, long long end) {
  for (long long n = end - 1; n >= 1 && n <= static_cast<long long>(lines.size()); --n) {
    const std::vector<std::string> t = tokens_of(lines[static_cast<std::size_t>(n - 1)]);
    if (t.size() != 6 || t[1] != "-1") return false;
    double sum = 0.0;
    for (int k = 3; k < 6; ++k) {
      const double u = std::strtod(t[static_cast<std::size_t>(k)].c_str(), nullptr);
      sum += u * u;
    }
    if (std::sqrt(sum) > 1e-8) return true;
  }
  return false;
}

}  // namespace

std::vector<PolishHint> polish_hints(const Report& report, std::string_view text) {
  std::vector<PolishHint> hints;
  if (text.empty()) return hints;
  std::vector<std::string_view> lines;
  std::set<std::pair<int, long long>> seen;
  for (const Finding& f : report.findings) {
    if (f.code != "Error201" && f.code != "Error202" && f.code != "Error203") continue;
    if (f.lines.empty() || !seen.insert({f.ship, f.lines.front()}).second) continue;
    if (lines.empty()) {
      std::size_t pos = 0;
      while (pos < text.size()) {
        const std::size_t end = text.find('\n', pos);
        const std::size_t stop = end == std::string_view::npos ? text.size() : end;
        lines.push_back(text.substr(pos, stop - pos));
        pos = stop + 1;
      }
    }
    hints.push_back({f.ship, f.lines.front(), arc_thrusts(lines, f.lines.front())});
  }
  return hints;
}

std::string polish_sentence(const PolishHint& hint) {
  const std::string where = "The arc of ship " + std::to_string(hint.ship) + " ending on line " +
                            std::to_string(hint.line);
  if (hint.fixable) {
    return where + " has thrust: kavren-polish can turn it to land on the state written there.";
  }
  return where + " has no thrust: kavren-polish cannot fix it.";
}

}  // namespace kavren::report
