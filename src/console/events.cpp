// The event and ship checks, each printing its first finding.
#include "console/announce.h"
#include "console/checks.h"
#include "core/ship_checks.h"
#include "events/encounters.h"
#include "events/event_checks.h"
#include "mining/ship_ledger.h"

namespace {

// Runs one event check on a stopping collector over the process-wide catalogue and
// prints its finding.
template <class Event, class Check>
bool announce_event(Event& event, Check check) {
  kavren::Findings findings(true);
  kavren::EventContext context{findings, t_eles_asteroids, 0};
  check(event, context);
  return kavren::announce(findings);
}

}  // namespace

double get_vinf(int id, StateStruct s) {
  return kavren::excess_speed(id, s, t_eles_asteroids);
}

void err_state_ship(int id, StateStruct s, double& dr, double& dv) {
  kavren::state_error(id, s, t_eles_asteroids, dr, dv);
}

bool LaunchClass::check_2lines_trm() const {
  return announce_event(*this, kavren::launch_pair);
}

bool LaunchClass::check_initialmass() const {
  return announce_event(*this, kavren::launch_mass);
}

bool LaunchClass::check_vinf() const {
  return announce_event(*this, kavren::launch_speed);
}

bool LaunchClass::check_rv_ifequal2Earth() const {
  return announce_event(*this, kavren::launch_at_earth);
}

bool LaunchClass::check_launchevent() const {
  return check_2lines_trm() && check_initialmass() && check_vinf() && check_rv_ifequal2Earth();
}

bool FlybyClass::check_2lines_trm() const {
  return announce_event(*this, kavren::flyby_pair);
}

bool FlybyClass::check_r_ifequal2Star() const {
  return announce_event(*this, kavren::flyby_at_planet);
}

bool FlybyClass::check_flyby() {
  return announce_event(*this, kavren::flyby_pass);
}

bool FlybyClass::check_flybyevent() {
  return check_2lines_trm() && check_r_ifequal2Star() && check_flyby();
}

bool VisitClass::check_2lines_trv() const {
  return announce_event(*this, kavren::visit_pair);
}

bool VisitClass::check_rv_ifequal2asteroid() const {
  return announce_event(*this, kavren::visit_at_asteroid);
}

bool VisitClass::check_visitevent() const {
  return check_2lines_trv() && check_rv_ifequal2asteroid();
}

bool ShipClass::check_all() {
  kavren::Findings findings(true);
  kavren::EventContext context{findings, t_eles_asteroids, ship_id};
  kavren::check_ship(*this, context);
  return kavren::announce(findings);
}

bool ShipClass::check_dm() {
  kavren::Findings findings(true);
  kavren::check_resource_balance(*this, findings);
  return kavren::announce(findings);
}

bool ShipClass::calculate_check_num_miners() {
  kavren::Findings findings(true);
  kavren::check_miner_count(*this, findings);
  return kavren::announce(findings);
}

bool ShipClass::check_final_mass() const {
  kavren::Findings findings(true);
  kavren::check_dry_mass(*this, findings);
  return kavren::announce(findings);
}
