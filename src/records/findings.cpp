#include "records/findings.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <sstream>

namespace kavren {
namespace {

const RuleInfo kRules[] = {
    {"epoch.mission_start", "Error001", "event epoch", "MJD", ">=", 0},
    {"epoch.mission_end", "Error002", "event epoch", "MJD", "<=", 0},
    {"epoch.event_order", "Error005", "time since the previous event", "day", ">", 0},
    {"drop.excess_speed", "Error806", "excess speed at an Earth drop", "km/s", "<=", 0},
    {"launch.time", "Error501", "epoch difference of the two lines", "day", "<=", 0},
    {"launch.position", "Error502", "position difference of the two lines", "km", "<=", 0},
    {"launch.mass", "Error503", "mass difference of the two lines", "kg", "<=", 0},
    {"launch.initial_mass", "Error504", "initial mass", "kg", "<=", 0},
    {"launch.excess_speed", "Error505", "launch excess speed", "km/s", "<=", 0},
    {"launch.earth_position", "Error506", "position error to the Earth", "km", "<=", 0},
    {"launch.earth_velocity", "Error507", "velocity error to the Earth", "km/s", "<=", 0},
    {"flyby.time", "Error601", "epoch difference of the two lines", "day", "<=", 0},
    {"flyby.position", "Error602", "position difference of the two lines", "km", "<=", 0},
    {"flyby.mass", "Error603", "mass difference of the two lines", "kg", "<=", 0},
    {"flyby.planet_position", "Error604", "position error to the planet", "km", "<=", 0},
    {"flyby.speed_change", "Error607", "change of the excess speed", "km/s", "<=", 0},
    {"flyby.turn", "Error605", "turn angle of the excess velocity", "rad", "<=", 0},
    {"rendezvous.time", "Error701", "epoch difference of the two lines", "day", "<=", 0},
    {"rendezvous.position", "Error702", "position difference of the two lines", "km", "<=", 0},
    {"rendezvous.velocity", "Error703", "velocity difference of the two lines", "km/s", "<=", 0},
    {"rendezvous.asteroid_position", "Error704", "position error to the asteroid", "km", "<=", 0},
    {"rendezvous.asteroid_velocity", "Error705", "velocity error to the asteroid", "km/s", "<=", 0},
    {"ship.resource_balance", "Error801", "resources carried but not dropped", "kg", "<=", 0},
    {"ship.miners", "Error807", "miners used by the ship", "miners", "<=", 0},
    {"ship.final_mass", "Error901", "final mass without resources", "kg", ">=", 0},
    {"mining.interval", "Error802", "time between deploying and collecting", "day", ">=", 0},
    {"mining.miner_mass", "Error803", "mass left with the miner, off 40 kg", "kg", "<=", 0},
    {"mining.collected_mass", "Error804", "resources collected", "kg", "<=", 0},
    {"mining.collected_something", "Error804", "resources collected", "kg", ">", 0},
    {"mining.rendezvous", "Error805", "rendezvous with one asteroid", "rendezvous", "<=", 0},
    {"thrust.magnitude", "Error401", "thrust magnitude", "N", "<=", 0},
    {"thrust.step_order", "ErrorA07", "time between thrust lines", "day", ">=", 0},
    {"thrust.step_length", "ErrorA08", "time between thrust lines", "day", "<=", 0},
    {"arc.phase_start", "Error003", "start of a thrust phase after the state's epoch", "day",
     ">=", 0},
    {"arc.end_order", "Error004", "end of the arc after the state's epoch", "day", ">=", 0},
    {"arc.sun_distance", "Error101", "distance to the Sun", "AU", ">=", 1},
    {"arc.end_position", "Error201", "position error at the arc's end", "km", "<=", 1},
    {"arc.end_velocity", "Error202", "velocity error at the arc's end", "km/s", "<=", 1},
    {"arc.end_mass", "Error203", "mass error at the arc's end", "kg", "<=", 1},
    {"fleet.ships", "Error301", "mining ships", "ships", "<=", 3},
    {"input.arguments", "Error000", "", "", "", 0},
    {"input.catalogue_file", "ErrorA00", "", "", "", 1},
    {"input.solution_file", "ErrorA01", "", "", "", 1},
    {"output.score_file", "ErrorA00", "", "", "", 0},
    {"format.empty_solution", "ErrorA02", "", "", "", 0},
    {"format.line", "ErrorA09", "", "", "", 0},
    {"format.event_id", "ErrorA10", "", "", "", 0},
    {"format.arc_event_id", "ErrorA11", "", "", "", 0},
    {"format.ship_id", "ErrorA12", "", "", "", 0},
    {"grouping.launch_count", "ErrorA13", "", "", "", 0},
    {"grouping.launch_start", "ErrorA14", "", "", "", 0},
    {"grouping.launch_lines", "ErrorA15", "", "", "", 0},
    {"grouping.venus_count", "ErrorA16", "", "", "", 0},
    {"grouping.venus_lines", "ErrorA17", "", "", "", 0},
    {"grouping.earth_count", "ErrorA18", "", "", "", 0},
    {"grouping.earth_lines", "ErrorA19", "", "", "", 0},
    {"grouping.mars_count", "ErrorA20", "", "", "", 0},
    {"grouping.mars_lines", "ErrorA21", "", "", "", 0},
    {"grouping.rendezvous_count", "ErrorA22", "", "", "", 0},
    {"grouping.rendezvous_lines", "ErrorA23", "", "", "", 0},
    {"grouping.arc_lines", "ErrorA03", "", "", "", 0},
    {"thrust.first_line", "ErrorA03", "", "", "", 0},
    {"thrust.zero_line", "ErrorA04", "", "", "", 0},
    {"thrust.last_line", "ErrorA05", "", "", "", 0},
    {"thrust.closing_line", "ErrorA06", "", "", "", 0},
};
static_assert(sizeof(kRules) / sizeof(kRules[0]) == static_cast<int>(Rule::count),
              "one entry per rule");

bool upper_bound(Rule rule) {
  return rule_info(rule).relation[0] == '<';
}

}  // namespace

const RuleInfo& rule_info(Rule rule) {
  return kRules[static_cast<int>(rule)];
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
      rows_(static_cast<std::size_t>(
          std::max(0, static_cast<int>(last) - static_cast<int>(first) + 1))) {}

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

bool Findings::fail(Rule rule, std::string message, std::initializer_list<long long> lines,
                    int ship, double value, double limit) {
  const RuleInfo& info = rule_info(rule);
  Finding finding;
  finding.code = info.code;
  finding.message = std::move(message);
  finding.exit_status = info.exit_status;
  finding.lines.assign(lines.begin(), lines.end());
  finding.ship = ship;
  if (rule < kFirstLayoutRule) {
    finding.quantity = info.quantity;
    finding.unit = info.unit;
    finding.value = value;
    finding.limit = limit;
    finding.margin = margin_of(rule, value, limit);
  }
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
  add_warning(warning, 1);
}

// The first few places of a warning are named.
constexpr std::size_t kPlacesShown = 10;

void Findings::add_warning(const Warning& warning, std::uint64_t times) {
  for (WarningGroup& group : warnings_) {
    Warning& first = group.first;
    if (first.ship != warning.ship || first.kind != warning.kind || first.rule != warning.rule) {
      continue;
    }
    group.times += times;
    for (long long line : warning.lines) {
      if (first.lines.size() < kPlacesShown) first.lines.push_back(line);
    }
    return;
  }
  warnings_.push_back(WarningGroup{warning, times});
  std::vector<long long>& lines = warnings_.back().first.lines;
  if (lines.size() > kPlacesShown) lines.resize(kPlacesShown);
}

void Findings::merge(Findings&& later) {
  for (Finding& finding : later.findings_) {
    finding.first = findings_.empty();
    findings_.push_back(std::move(finding));
  }
  later.findings_.clear();
  merge(static_cast<const Findings&>(later));
}

void Findings::merge(const Findings& later) {
  for (const Finding& finding : later.findings_) {
    findings_.push_back(finding);
    findings_.back().first = findings_.size() == 1;
  }
  // A rule that passed on NaN is named once, at its first NaN, as one collector does.
  for (const WarningGroup& group : later.warnings_) {
    const Warning& warning = group.first;
    bool repeated = false;
    if (warning.kind == "nan-passes") {
      for (int r = 0; r < static_cast<int>(Rule::count) && !repeated; ++r) {
        const Row* mine = row(r);
        repeated = mine != nullptr && mine->nan_warned && warning.rule == kRules[r].id;
      }
    }
    if (!repeated) add_warning(warning, group.times);
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

void Findings::relocate(long long line_shift, int ship) {
  auto move = [&](std::vector<long long>& lines, int& of) {
    for (long long& line : lines) line += line_shift;
    if (of != 0) of = ship;
  };
  for (Finding& finding : findings_) move(finding.lines, finding.ship);
  for (WarningGroup& group : warnings_) move(group.first.lines, group.first.ship);
  for (Row& row : rows_) {
    if (row.line != 0) row.line += line_shift;
    if (row.ship != 0) row.ship = ship;
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
  std::vector<Warning> all;
  for (const WarningGroup& group : warnings_) {
    all.push_back(group.first);
    if (group.times > 1) all.back().message += " (" + std::to_string(group.times) + " times)";
  }
  for (const Constraint& c : constraints()) {
    const double size = std::fabs(c.limit);
    if (!c.passed || !(size > 0.0) || !(c.margin >= 0.0) || !(c.margin < 0.001 * size)) continue;
    std::ostringstream text;
    text.precision(6);
    text << "The " << c.quantity << " comes within 0.1 % of its limit: " << c.worst << " " << c.unit
         << " against " << c.limit << " " << c.unit << ".";
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
