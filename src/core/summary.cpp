#include "core/summary.h"

#include <algorithm>
#include <sstream>

#include "mining/score.h"
#include "mining/ship_ledger.h"

namespace kavren {
namespace {

EventMark mark(const char* kind, int body_id, const StateStruct& s) {
  EventMark m;
  m.kind = kind;
  m.body_id = body_id;
  m.line = printed_line(s.line_index);
  m.epoch = s.epoch;
  for (int i = 0; i < 3; ++i) m.r[i] = s.r[i];
  m.mass = s.mass;
  return m;
}

}  // namespace

std::string summary_text(int num_ships, std::size_t num_mined, double total_mass) {
  std::ostringstream out;
  out << "Check successfully!\n";
  out << "The number of mining ships is " << num_ships << " ;\n";
  out << "The number of mined asteroids is " << num_mined << " ;\n";
  out << "The total resource mass is " << total_mass << " kg.\n";
  return out.str();
}

void conclude(Findings& findings, const std::vector<ShipClass>& ships, int num_ships,
              const std::vector<StoreDmStruct>& store, double total_mass,
              const std::vector<int>& thrust_phases, Report& report) {
  std::vector<Finding>& found = findings.findings();
  report.accepted = found.empty();
  if (report.accepted) {
    report.score_file = score_file_text(store);
    report.checker_output = summary_text(num_ships, store.size(), total_mass);
    report.exit_status = 0;
  } else {
    report.checker_output = found.front().message;
    report.exit_status = found.front().exit_status;
  }
  report.constraints = findings.constraints();
  report.warnings = findings.warnings();
  report.findings = std::move(found);
  report.summary = summarise(ships, num_ships, store, total_mass, thrust_phases);
}

Summary summarise(const std::vector<ShipClass>& ships, int num_ships,
                  const std::vector<StoreDmStruct>& store, double total_mass,
                  const std::vector<int>& thrust_phases) {
  Summary summary;
  summary.ships = num_ships;
  summary.mined_asteroids = store.size();
  summary.total_resource_mass = total_mass;
  for (std::size_t s = 0; s < ships.size(); ++s) {
    const ShipClass& ship = ships[s];
    ShipSummary row;
    row.ship = ship.ship_id;
    row.launch_epoch = ship.launch.state_before.epoch;
    row.final_mass = ship.final_mass;
    const MiningTally tally = tally_mining(ship);
    row.miners = tally.miners;
    row.resources = tally.collected;
    if (tally.last_drop_epoch) row.last_drop_epoch = *tally.last_drop_epoch;
    row.thrust_phases = s < thrust_phases.size() ? thrust_phases[s] : 0;
    row.events.push_back(mark("launch", ship.launch.body_id, ship.launch.state_before));
    for (const FlybyClass& flyby : ship.flybys) {
      row.events.push_back(mark(flyby.drop ? "drop" : "flyby", flyby.body_id, flyby.state_before));
    }
    for (const VisitClass& visit : ship.visits) {
      row.events.push_back(mark("rendezvous", visit.body_id, visit.state_before));
    }
    std::stable_sort(row.events.begin(), row.events.end(),
                     [](const EventMark& a, const EventMark& b) { return a.line < b.line; });
    summary.per_ship.push_back(std::move(row));
  }
  return summary;
}

}  // namespace kavren
