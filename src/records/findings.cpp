#include "records/findings.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <sstream>

namespace kavren {
namespace {

const RuleInfo kRules[] = {
    {"epoch.mission_start", "Error001", "event epoch", "MJD", ">="},
    {"epoch.mission_end", "Error002", "event epoch", "MJD", "<="},
    {"epoch.event_order", "Error005", "time since the previous event", "day", ">"},
    {"drop.excess_speed", "Error806", "excess speed at an Earth drop", "km/s", "<="},
    {"launch.time", "Error501", "epoch difference of the two lines", "day", "<="},
    {"launch.position", "Error502", "position difference of the two lines", "km", "<="},
    {"launch.mass", "Error503", "mass difference of the two lines", "kg", "<="},
    {"launch.initial_mass", "Error504", "initial mass", "kg", "<="},
    {"launch.excess_speed", "Error505", "launch excess speed", "km/s", "<="},
    {"launch.earth_position", "Error506", "position error to the Earth", "km", "<="},
    {"launch.earth_velocity", "Error507", "velocity error to the Earth", "km/s", "<="},
    {"flyby.time", "Error601", "epoch difference of the two lines", "day", "<="},
    {"flyby.position", "Error602", "position difference of the two lines", "km", "<="},
    {"flyby.mass", "Error603", "mass difference of the two lines", "kg", "<="},
    {"flyby.planet_position", "Error604", "position error to the planet", "km", "<="},
    {"flyby.speed_change", "Error607", "change of the excess speed", "km/s", "<="},
    {"flyby.turn", "Error605", "turn angle of the excess velocity", "rad", "<="},
    {"rendezvous.time", "Error701", "epoch difference of the two lines", "day", "<="},
    {"rendezvous.position", "Error702", "position difference of the two lines", "km", "<="},
    {"rendezvous.velocity", "Error703", "velocity difference of the two lines", "km/s", "<="},
    {"rendezvous.asteroid_position", "Error704", "position error to the asteroid", "km", "<="},
    {"rendezvous.asteroid_velocity", "Error705", "velocity error to the asteroid", "km/s", "<="},
    {"ship.resource_balance", "Error801", "resources carried but not dropped", "kg", "<="},
    {"ship.miners", "Error807", "miners used by the ship", "miners", "<="},
    {"ship.final_mass", "Error901", "final mass without resources", "kg", ">="},
    {"mining.interval", "Error802", "time between deploying and collecting", "day", ">="},
    {"mining.miner_mass", "Error803", "mass left with the miner, off 40 kg", "kg", "<="},
    {"mining.collected_mass", "Error804", "resources collected", "kg", "<="},
    {"mining.collected_something", "Error804", "resources collected", "kg", ">"},
    {"mining.rendezvous", "Error805", "rendezvous with one asteroid", "rendezvous", "<="},
    {"thrust.magnitude", "Error401", "thrust magnitude", "N", "<="},
    {"thrust.step_order", "ErrorA07", "time between thrust lines", "day", ">="},
    {"thrust.step_length", "ErrorA08", "time between thrust lines", "day", "<="},
    {"arc.phase_start", "Error003", "start of a thrust phase after the state's epoch", "day",
     ">="},
    {"arc.end_order", "Error004", "end of the arc after the state's epoch", "day", ">="},
    {"arc.sun_distance", "Error101", "distance to the Sun", "AU", ">="},
    {"arc.end_position", "Error201", "position error at the arc's end", "km", "<="},
    {"arc.end_velocity", "Error202", "velocity error at the arc's end", "km/s", "<="},
    {"arc.end_mass", "Error203", "mass error at the arc's end", "kg", "<="},
    {"fleet.ships", "Error301", "mining ships", "ships", "<="},
};
static_assert(sizeof(kRules) / sizeof(kRules[0]) == static_cast<int>(Rule::count),
              "one entry per rule");

bool upper_bound(Rule rule) { return rule_info(rule).relation[0] == '<'; }

}  // namespace

const RuleInfo& rule_info(Rule rule) { return kRules[static_cast<int>(rule)]; }

int exit_status_of(const std::string& code, const std::string& message) {
  if (code == "Error301") return 3;
  if (code == "Error101" || code == "Error201" || code == "Error202" || code == "Error203" ||
      code == "ErrorA01") {
    return 1;
  }
  // The catalogue's ErrorA00 ends with status 1, the score file's with 0.
  if (code == "ErrorA00" && message.compare(0, 9, "ErrorA00:") == 0) return 1;
  return 0;
}

std::string line_message(const char* prefix, long long line, const char* suffix) {
  std::string text(prefix);
  text += std::to_string(line);
  text += suffix;
  text += '\n';
  return text;
}

Findings::Findings(bool stop_at_first, Rule first, Rule last)
    : stop_at_first_(stop_at_first),
      first_rule_(static_cast<int>(first)),
      rows_(static_cast<std::size_t>(std::max(0, static_cast<int>(last) - static_cast<int>(first) + 1))) {}

double Findings::margin_of(Rule rule, double value, double limit) {
  return upper_bound(rule) ? limit - value : value - limit;
}

void Findings::evaluate(Rule rule, bool holds, double value, double limit, long long line,
                        int ship) {
  Row* kept = this->row(static_cast<int>(rule));
  if (kept == nullptr) return;
  Row& row = *kept;
  ++row.evaluations;
  if (!holds) ++row.violations;
  const double margin = margin_of(rule, value, limit);
  if (std::isnan(margin)) {
    if (holds && !row.nan_warned) {
      row.nan_warned = true;
      warn("nan-passes",
           std::string("The ") + rule_info(rule).quantity +
               " is not a number, and a comparison with NaN never fails.",
           {line}, ship, rule_info(rule).id);
    }
    if (!std::isnan(row.margin) || row.evaluations > 1) return;
  } else if (!std::isnan(row.margin) && !(margin < row.margin)) {
    return;
  }
  row.worst = value;
  row.limit = limit;
  row.margin = margin;
  row.line = line;
  row.ship = ship;
}

bool Findings::fail(Rule rule, std::string message, std::initializer_list<long long> lines, int ship,
                    double value, double limit) {
  Finding finding;
  finding.code = message.substr(0, 8);
  finding.message = std::move(message);
  finding.lines.assign(lines.begin(), lines.end());
  finding.ship = ship;
  if (rule != Rule::count) {
    const RuleInfo& info = rule_info(rule);
    finding.quantity = info.quantity;
    finding.unit = info.unit;
    finding.value = value;
    finding.limit = limit;
    finding.margin = margin_of(rule, value, limit);
  }
  return fail(std::move(finding));
}

bool Findings::fail(Finding finding) {
  finding.exit_status = exit_status_of(finding.code, finding.message);
  finding.first = findings_.empty();
  findings_.push_back(std::move(finding));
  return !stop_at_first_;
}

void Findings::warn(std::string kind, std::string message, std::vector<long long> lines, int ship,
                    std::string rule) {
  Warning warning;
  warning.kind = std::move(kind);
  warning.message = std::move(message);
  warning.lines = std::move(lines);
  warning.ship = ship;
  warning.rule = std::move(rule);
  warnings_.push_back(std::move(warning));
}

void Findings::merge(Findings&& later) {
  for (Finding& finding : later.findings_) {
    finding.first = findings_.empty();
    findings_.push_back(std::move(finding));
  }
  // A rule that passed on NaN is named once, at its first NaN, as one collector does.
  for (Warning& warning : later.warnings_) {
    bool repeated = false;
    if (warning.kind == "nan-passes") {
      for (int r = 0; r < static_cast<int>(Rule::count) && !repeated; ++r) {
        const Row* mine = row(r);
        repeated = mine != nullptr && mine->nan_warned && warning.rule == kRules[r].id;
      }
    }
    if (!repeated) warnings_.push_back(std::move(warning));
  }
  for (int r = 0; r < static_cast<int>(Rule::count); ++r) {
    const Row* kept = later.row(r);
    Row* into = row(r);
    if (kept == nullptr || into == nullptr || kept->evaluations == 0) continue;
    Row& mine = *into;
    const Row& theirs = *kept;
    const bool take = mine.evaluations == 0 ||
                      (std::isnan(mine.margin) && !std::isnan(theirs.margin)) ||
                      (!std::isnan(theirs.margin) && theirs.margin < mine.margin);
    mine.evaluations += theirs.evaluations;
    mine.violations += theirs.violations;
    mine.nan_warned = mine.nan_warned || theirs.nan_warned;
    if (!take) continue;
    mine.worst = theirs.worst;
    mine.limit = theirs.limit;
    mine.margin = theirs.margin;
    mine.line = theirs.line;
    mine.ship = theirs.ship;
  }
}

std::vector<Constraint> Findings::constraints() const {
  std::vector<Constraint> table;
  for (int r = 0; r < static_cast<int>(Rule::count); ++r) {
    const Row* kept = this->row(r);
    if (kept == nullptr || kept->evaluations == 0) continue;
    const Row& row = *kept;
    const RuleInfo& info = kRules[r];
    Constraint c;
    c.rule = info.id;
    c.code = info.code;
    c.quantity = info.quantity;
    c.unit = info.unit;
    c.relation = info.relation;
    c.evaluations = row.evaluations;
    c.violations = row.violations;
    c.worst = row.worst;
    c.limit = row.limit;
    c.margin = row.margin;
    c.line = row.line;
    c.ship = row.ship;
    c.passed = row.violations == 0;
    table.push_back(std::move(c));
  }
  return table;
}

std::vector<Warning> Findings::warnings() const {
  // One warning per kind, ship and rule, naming the first few places.
  constexpr std::size_t kPlacesShown = 10;
  std::vector<Warning> all;
  std::vector<std::size_t> times;
  for (const Warning& w : warnings_) {
    std::size_t k = 0;
    while (k < all.size() &&
           (all[k].kind != w.kind || all[k].ship != w.ship || all[k].rule != w.rule)) {
      ++k;
    }
    if (k == all.size()) {
      all.push_back(w);
      times.push_back(1);
      continue;
    }
    ++times[k];
    for (long long line : w.lines) {
      if (all[k].lines.size() < kPlacesShown) all[k].lines.push_back(line);
    }
  }
  for (std::size_t k = 0; k < all.size(); ++k) {
    if (times[k] > 1) all[k].message += " (" + std::to_string(times[k]) + " times)";
  }
  for (const Constraint& c : constraints()) {
    const double size = std::fabs(c.limit);
    if (!c.passed || !(size > 0.0) || !(c.margin >= 0.0) || !(c.margin < 0.001 * size)) continue;
    std::ostringstream text;
    text.precision(6);
    text << "The " << c.quantity << " comes within 0.1 % of its limit: " << c.worst << " "
         << c.unit << " against " << c.limit << " " << c.unit << ".";
    Warning w;
    w.kind = "near-limit";
    w.message = text.str();
    if (c.line > 0) w.lines.push_back(c.line);
    w.ship = c.ship;
    w.rule = c.rule;
    all.push_back(std::move(w));
  }
  return all;
}

}  // namespace kavren
