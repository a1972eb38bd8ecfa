#include <cmath>

#include "json/json_value.h"

namespace kavren {
namespace {

// A number, or null when it is not finite (JSON has no NaN nor infinity).
template <class Json>
Json number(double x) {
  return std::isfinite(x) ? Json(x) : Json(nullptr);
}

template <class Json>
Json lines(const std::vector<long long>& values) {
  Json array = Json::array();
  for (long long v : values) array.push_back(v);
  return array;
}

template <class Json>
Json finding(const Finding& f) {
  Json j = Json::object();
  j["code"] = f.code;
  j["message"] = f.message;
  j["lines"] = lines<Json>(f.lines);
  j["ship"] = f.ship;
  j["quantity"] = f.quantity;
  j["value"] = number<Json>(f.value);
  j["limit"] = number<Json>(f.limit);
  j["margin"] = number<Json>(f.margin);
  j["unit"] = f.unit;
  j["first"] = f.first;
  j["exit_status"] = f.exit_status;
  return j;
}

template <class Json>
Json constraint(const Constraint& c) {
  Json j = Json::object();
  j["rule"] = c.rule;
  j["code"] = c.code;
  j["quantity"] = c.quantity;
  j["unit"] = c.unit;
  j["relation"] = c.relation;
  j["evaluations"] = c.evaluations;
  j["violations"] = c.violations;
  j["worst"] = number<Json>(c.worst);
  j["limit"] = number<Json>(c.limit);
  j["margin"] = number<Json>(c.margin);
  j["line"] = c.line;
  j["ship"] = c.ship;
  j["passed"] = c.passed;
  return j;
}

template <class Json>
Json warning(const Warning& w) {
  Json j = Json::object();
  j["kind"] = w.kind;
  j["message"] = w.message;
  j["lines"] = lines<Json>(w.lines);
  j["ship"] = w.ship;
  j["rule"] = w.rule;
  return j;
}

template <class Json>
Json event(const EventMark& e) {
  Json j = Json::object();
  j["kind"] = e.kind;
  j["body_id"] = e.body_id;
  j["line"] = e.line;
  j["epoch"] = number<Json>(e.epoch);
  j["r"] = Json::array({number<Json>(e.r[0]), number<Json>(e.r[1]), number<Json>(e.r[2])});
  j["mass"] = number<Json>(e.mass);
  return j;
}

template <class Json>
Json ship_summary(const ShipSummary& s) {
  Json j = Json::object();
  j["ship"] = s.ship;
  j["launch_epoch"] = number<Json>(s.launch_epoch);
  j["final_mass"] = number<Json>(s.final_mass);
  j["miners"] = s.miners;
  j["resources"] = number<Json>(s.resources);
  j["last_drop_epoch"] = number<Json>(s.last_drop_epoch);
  j["thrust_phases"] = s.thrust_phases;
  Json events = Json::array();
  for (const EventMark& e : s.events) events.push_back(event<Json>(e));
  j["events"] = std::move(events);
  return j;
}

template <class Json>
Json summary(const Summary& s) {
  Json j = Json::object();
  j["ships"] = s.ships;
  j["mined_asteroids"] = s.mined_asteroids;
  j["total_resource_mass"] = number<Json>(s.total_resource_mass);
  Json per_ship = Json::array();
  for (const ShipSummary& ship : s.per_ship) per_ship.push_back(ship_summary<Json>(ship));
  j["per_ship"] = std::move(per_ship);
  return j;
}

template <class Json>
Json report_value(const Report& r) {
  Json j = Json::object();
  j["schema"] = kReportSchema;
  j["outcome"] = outcome_name(r.outcome);
  j["error"] = r.error;
  j["checker_output"] = r.checker_output;
  j["exit_status"] = r.exit_status;
  j["score_file"] = r.score_file ? Json(*r.score_file) : Json(nullptr);
  j["accepted"] = r.accepted;
  Json findings = Json::array();
  for (const Finding& f : r.findings) findings.push_back(finding<Json>(f));
  j["findings"] = std::move(findings);
  Json constraints = Json::array();
  for (const Constraint& c : r.constraints) constraints.push_back(constraint<Json>(c));
  j["constraints"] = std::move(constraints);
  Json warnings = Json::array();
  for (const Warning& w : r.warnings) warnings.push_back(warning<Json>(w));
  j["warnings"] = std::move(warnings);
  j["summary"] = summary<Json>(r.summary);
  return j;
}

}  // namespace

const char* outcome_name(Outcome outcome) {
  switch (outcome) {
    case Outcome::verified:
      return "verified";
    case Outcome::limit_reached:
      return "limit_reached";
    case Outcome::out_of_memory:
      return "out_of_memory";
  }
  return "verified";
}

nlohmann::json report_to_json_value(const Report& report) {
  return report_value<nlohmann::json>(report);
}

std::string report_to_json(const Report& report, int indent) {
  // Bytes that are not UTF-8 (a solution line may hold any) are replaced, never refused.
  return report_value<nlohmann::ordered_json>(report).dump(
      indent, ' ', false, nlohmann::ordered_json::error_handler_t::replace);
}

}  // namespace kavren
