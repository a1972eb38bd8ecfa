// The mining ledger, the ship count and the score file.
#include <fstream>
#include <iostream>

#include "console/announce.h"
#include "console/checks.h"
#include "console/termination.h"
#include "mining/score.h"
#include "records/findings.h"

int check_DmStructAsteroid(DmStructAsteroid& record) {
  kavren::Findings findings(true);
  const int verdict = kavren::check_mining_pair(record, findings);
  kavren::announce(findings);
  return verdict;
}

bool CheckVisitDm(std::vector<ShipClass>& ships, int num_ships,
                  std::vector<DmStructAsteroid>& asteroid_table,
                  std::vector<StoreDmStruct>& store) {
  kavren::Findings findings(true);
  kavren::check_mining_ledger(ships, num_ships, asteroid_table, store, findings);
  return kavren::announce(findings);
}

bool Test_MotherShipNum(int num_ships, const std::vector<StoreDmStruct>& store, double& total) {
  kavren::Findings findings(true);
  kavren::check_ship_count(num_ships, store, total, findings);
  return kavren::announce(findings, true);
}

bool Output_Solution(const std::vector<StoreDmStruct>& store) {
  std::ofstream file("./ScoreData.txt", std::ios::out | std::ios::trunc);
  if (!file.is_open()) {
    std::cout << "ErrorA00. File Open Error: Cannot find this file 'ScoreData.txt'." << std::endl;
    kavren::end_run(kavren::rule_info(kavren::Rule::score_file).exit_status);
  }
  // A failed write or close does not change the verdict.
  file << kavren::score_file_text(store);
  file.close();
  return true;
}
