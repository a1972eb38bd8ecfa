#include "report_json.h"

#include <cmath>

namespace kavren {
namespace {

using Json = nlohmann::ordered_json;

Json number(double x) { return std::isfinite(x) ? Json(x) : Json(nullptr); }

const char* outcome_name(Outcome outcome) {
  switch (outcome) {
    case Outcome::verified: return "verified";
    case Outcome::limit_reached: return "limit_reached";
    case Outcome::out_of_memory: return "out_of_memory";
  }
  return "verified";
}

Json finding(const Finding& f) {
  Json j;
  j["code"] = f.code;
  j["message"] = f.message;
  j["lines"] = f.lines;
  j["ship"] = f.ship;
  j["quantity"] = f.quantity;
  j["value"] = number(f.value);
  j["limit"] = number(f.limit);
  j["margin"] = number(f.margin);
  j["unit"] = f.unit;
  j["first"] = f.first;
  j["exit_status"] = f.exit_status;
  return j;
}

Json constraint(const Constraint& c) {
  Json j;
  j["rule"] = c.rule;
  j["code"] = c.code;
  j["quantity"] = c.quantity;
  j["unit"] = c.unit;
  j["relation"] = c.relation;
  j["evaluations"] = c.evaluations;
  j["violations"] = c.violations;
  j["worst"] = number(c.worst);
  j["limit"] = number(c.limit);
  j["margin"] = number(c.margin);
  j["line"] = c.line;
  j["ship"] = c.ship;
  j["passed"] = c.passed;
  return j;
}

Json warning(const Warning& w) {
  Json j;
  j["kind"] = w.kind;
  j["message"] = w.message;
  j["lines"] = w.lines;
  j["ship"] = w.ship;
  j["rule"] = w.rule;
  return j;
}

Json event(const EventMark& e) {
  Json j;
  j["kind"] = e.kind;
  j["body_id"] = e.body_id;
  j["line"] = e.line;
  j["epoch"] = number(e.epoch);
  j["r"] = Json::array({number(e.r[0]), number(e.r[1]), number(e.r[2])});
  j["mass"] = number(e.mass);
  return j;
}

Json ship(const ShipSummary& s) {
  Json j;
  j["ship"] = s.ship;
  j["launch_epoch"] = number(s.launch_epoch);
  j["final_mass"] = number(s.final_mass);
  j["miners"] = s.miners;
  j["resources"] = number(s.resources);
  j["last_drop_epoch"] = number(s.last_drop_epoch);
  j["thrust_phases"] = s.thrust_phases;
  Json events = Json::array();
  for (const EventMark& e : s.events) events.push_back(event(e));
  j["events"] = std::move(events);
  return j;
}

template <class T, class F>
Json list(const std::vector<T>& items, F each) {
  Json out = Json::array();
  for (const T& item : items) out.push_back(each(item));
  return out;
}

}  // namespace

nlohmann::ordered_json report_to_ordered_json(const Report& report) {
  Json j;
  j["schema"] = kReportSchema;
  j["outcome"] = outcome_name(report.outcome);
  j["error"] = report.error;
  j["checker_output"] = report.checker_output;
  j["exit_status"] = report.exit_status;
  j["score_file"] = report.score_file ? Json(*report.score_file) : Json(nullptr);
  j["accepted"] = report.accepted;
  j["findings"] = list(report.findings, finding);
  j["constraints"] = list(report.constraints, constraint);
  j["warnings"] = list(report.warnings, warning);
  Json summary;
  summary["ships"] = report.summary.ships;
  summary["mined_asteroids"] = report.summary.mined_asteroids;
  summary["total_resource_mass"] = number(report.summary.total_resource_mass);
  summary["per_ship"] = list(report.summary.per_ship, ship);
  j["summary"] = std::move(summary);
  return j;
}

std::string json_text(const nlohmann::ordered_json& value, int indent) {
  return value.dump(indent, ' ', false, nlohmann::ordered_json::error_handler_t::replace);
}

std::string report_to_json(const Report& report, int indent) {
  return json_text(report_to_ordered_json(report), indent);
}

nlohmann::json report_to_json_value(const Report& report) {
  return nlohmann::json(report_to_ordered_json(report));
}

}  // namespace kavren
