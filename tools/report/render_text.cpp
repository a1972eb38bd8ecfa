// The terminal report: plain columns, coloured only when the caller asks for it.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <sstream>

#include "report/polish_hint.h"
#include "report/render.h"

namespace kavren::report {
namespace {

const char* const kReset = "\033[0m";
const char* const kBold = "\033[1m";
const char* const kDim = "\033[2m";
const char* const kRed = "\033[31m";
const char* const kGreen = "\033[32m";
const char* const kYellow = "\033[33m";

struct Painter {
  bool on;
  std::string operator()(const char* code, const std::string& text) const {
    return on ? code + text + kReset : text;
  }
};

// Display width of UTF-8 text: one column per code point.
std::size_t width_of(const std::string& s) {
  std::size_t n = 0;
  for (unsigned char c : s) n += (c & 0xC0) != 0x80;
  return n;
}

enum class Align { left, right };

// Columns separated by two blanks; `paint` may colour a padded cell (row -1: heading).
std::string table(const std::vector<std::string>& heading, const std::vector<Align>& align,
                  const std::vector<std::vector<std::string>>& rows, const Painter& painter,
                  const std::function<const char*(std::size_t row, std::size_t col)>& colour) {
  std::vector<std::size_t> widths(heading.size(), 0);
  for (std::size_t c = 0; c < heading.size(); ++c) widths[c] = width_of(heading[c]);
  for (const auto& row : rows)
    for (std::size_t c = 0; c < row.size() && c < widths.size(); ++c)
      widths[c] = std::max(widths[c], width_of(row[c]));
  auto cell = [&](const std::string& text, std::size_t c, bool last) {
    std::string pad(widths[c] - width_of(text), ' ');
    if (align[c] == Align::right) return pad + text;
    return last ? text : text + pad;
  };
  std::string out;
  std::string head = "  ";
  for (std::size_t c = 0; c < heading.size(); ++c) {
    head += cell(heading[c], c, c + 1 == heading.size());
    if (c + 1 < heading.size()) head += "  ";
  }
  out += painter(kBold, head) + "\n";
  for (std::size_t r = 0; r < rows.size(); ++r) {
    out += "  ";
    for (std::size_t c = 0; c < heading.size(); ++c) {
      const std::string text = c < rows[r].size() ? rows[r][c] : "";
      const std::string padded = cell(text, c, c + 1 == heading.size());
      const char* code = colour ? colour(r, c) : nullptr;
      out += code ? painter(code, padded) : padded;
      if (c + 1 < heading.size()) out += "  ";
    }
    out += "\n";
  }
  return out;
}

std::string line_list(const std::vector<long long>& lines) {
  std::string s;
  for (std::size_t k = 0; k < lines.size(); ++k) {
    if (k == 4) return s + ",… (" + std::to_string(lines.size()) + ")";
    if (k) s += ",";
    s += std::to_string(lines[k]);
  }
  return s.empty() ? "-" : s;
}

std::string count_or_dash(int n) {
  return n > 0 ? std::to_string(n) : "-";
}

std::string with_unit(double x, const std::string& unit) {
  const std::string n = short_number(x);
  return unit.empty() || !std::isfinite(x) ? n : n + " " + unit;
}

void findings_section(std::string& out, const Report& r, const Painter& paint) {
  out += "\n" + paint(kBold, "Findings (" + std::to_string(r.findings.size()) + ")") + "\n";
  if (r.findings.empty()) {
    out += "  none\n";
    return;
  }
  std::vector<std::vector<std::string>> rows;
  for (const Finding& f : r.findings) {
    rows.push_back({f.code + (f.first ? " *" : ""), line_list(f.lines), count_or_dash(f.ship),
                    f.quantity.empty() ? "-" : f.quantity, with_unit(f.value, f.unit),
                    with_unit(f.limit, f.unit), with_unit(f.margin, f.unit)});
  }
  out += table({"code", "line", "ship", "quantity", "value", "limit", "margin"},
               {Align::left, Align::left, Align::right, Align::left, Align::right, Align::right,
                Align::right},
               rows, paint, [&](std::size_t row, std::size_t col) -> const char* {
                 if (col == 0) return kRed;
                 if (col == 6 && r.findings[row].margin < 0) return kRed;
                 return nullptr;
               });
  out += paint(kDim, "  * the finding kavren-check prints") + "\n";
}

void constraints_section(std::string& out, const Report& r, const Painter& paint) {
  out += "\n" + paint(kBold, "Constraints (" + std::to_string(r.constraints.size()) + " rules)") +
         "\n";
  if (r.constraints.empty()) {
    out += "  none evaluated\n";
    return;
  }
  std::vector<std::vector<std::string>> rows;
  for (const Constraint& c : r.constraints) {
    std::string where = c.line > 0 ? "line " + std::to_string(c.line) : "-";
    if (c.ship > 0) where += ", ship " + std::to_string(c.ship);
    rows.push_back({c.rule, c.code, std::to_string(c.evaluations), with_unit(c.worst, c.unit),
                    where,
                    std::isfinite(c.limit) ? c.relation + " " + with_unit(c.limit, c.unit) : "—",
                    with_unit(c.margin, c.unit),
                    c.passed ? "pass" : "FAIL (" + std::to_string(c.violations) + ")"});
  }
  out += table({"rule", "code", "evaluations", "worst", "where", "limit", "margin", "result"},
               {Align::left, Align::left, Align::right, Align::right, Align::left, Align::right,
                Align::right, Align::left},
               rows, paint, [&](std::size_t row, std::size_t col) -> const char* {
                 if (col != 7) return nullptr;
                 return r.constraints[row].passed ? kGreen : kRed;
               });
}

void warnings_section(std::string& out, const Report& r, const Painter& paint) {
  out += "\n" + paint(kBold, "Warnings (" + std::to_string(r.warnings.size()) + ")") + "\n";
  if (r.warnings.empty()) {
    out += "  none\n";
    return;
  }
  for (const Warning& w : r.warnings) {
    std::string where;
    if (!w.lines.empty()) where += " line " + line_list(w.lines);
    if (w.ship > 0) where += " ship " + std::to_string(w.ship);
    out += "  " + paint(kYellow, w.kind) + where + ": " + w.message + "\n";
  }
}

void summary_section(std::string& out, const Report& r, const Painter& paint) {
  const Summary& s = r.summary;
  out += "\n" + paint(kBold, "Ships") + "  " + std::to_string(s.ships) + " ships, " +
         std::to_string(s.mined_asteroids) + " mined asteroids, " +
         short_number(s.total_resource_mass) + " kg of resources\n";
  if (s.per_ship.empty()) return;
  std::vector<std::vector<std::string>> rows;
  for (const ShipSummary& ship : s.per_ship) {
    rows.push_back({std::to_string(ship.ship), short_number(ship.launch_epoch, 8),
                    short_number(ship.final_mass), std::to_string(ship.miners),
                    short_number(ship.resources), short_number(ship.last_drop_epoch, 8),
                    std::to_string(ship.thrust_phases), std::to_string(ship.events.size())});
  }
  out += table({"ship", "launch MJD", "final kg", "miners", "resources kg", "last drop MJD",
                "thrust phases", "events"},
               {Align::right, Align::right, Align::right, Align::right, Align::right, Align::right,
                Align::right, Align::right},
               rows, paint, nullptr);
}

}  // namespace

std::string exact_number(double x) {
  if (std::isnan(x)) return "nan";
  if (std::isinf(x)) return x < 0 ? "-inf" : "inf";
  char buffer[32];
  for (int digits = 1; digits <= 17; ++digits) {
    std::snprintf(buffer, sizeof buffer, "%.*g", digits, x);
    if (std::strtod(buffer, nullptr) == x) break;
  }
  return buffer;
}

std::string short_number(double x, int digits) {
  if (std::isnan(x)) return "—";
  if (std::isinf(x)) return x < 0 ? "-∞" : "∞";
  char buffer[40];
  std::snprintf(buffer, sizeof buffer, "%.*g", digits, x);
  return buffer;
}

std::string render_text(const Checked& checked, const TextStyle& style) {
  const Painter paint{style.colour};
  const Report& r = checked.report;
  std::string out;
  const char* verdict_colour = r.accepted ? kGreen : kRed;
  out += paint(verdict_colour, r.checker_output);
  if (!r.checker_output.empty() && r.checker_output.back() != '\n') out += "\n";
  if (r.outcome != Outcome::verified) {
    out += paint(kYellow, "Verification incomplete: " + r.error) + "\n";
  }
  findings_section(out, r, paint);
  for (const PolishHint& hint : polish_hints(r, checked.text)) {
    out += paint(kDim, "  " + polish_sentence(hint)) + "\n";
  }
  constraints_section(out, r, paint);
  warnings_section(out, r, paint);
  summary_section(out, r, paint);
  return out;
}

std::string render_table(const std::vector<Checked>& all, const TextStyle& style) {
  const Painter paint{style.colour};
  std::vector<std::vector<std::string>> rows;
  for (const Checked& c : all) {
    const Report& r = c.report;
    std::string verdict = r.accepted ? "accepted" : "rejected";
    if (!r.accepted && !r.findings.empty()) {
      for (const Finding& f : r.findings) {
        if (f.first) verdict += " " + f.code;
      }
    }
    if (r.outcome != Outcome::verified) verdict += " (incomplete)";
    char seconds[32];
    std::snprintf(seconds, sizeof seconds, "%.2f s", c.seconds);
    rows.push_back({c.name == "-" ? "(standard input)" : c.name, verdict,
                    std::to_string(r.summary.ships), std::to_string(r.summary.mined_asteroids),
                    short_number(r.summary.total_resource_mass) + " kg", seconds});
  }
  return paint(kBold, "Solutions") + "\n" +
         table({"file", "verdict", "ships", "asteroids", "resource mass", "time"},
               {Align::left, Align::left, Align::right, Align::right, Align::right, Align::right},
               rows, paint, [&](std::size_t row, std::size_t col) -> const char* {
                 if (col != 1) return nullptr;
                 return all[row].report.accepted ? kGreen : kRed;
               });
}

}  // namespace kavren::report
