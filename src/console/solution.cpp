#include <iostream>
#include <string>

#include "console/announce.h"
#include "console/checks.h"
#include "console/termination.h"
#include "readers/file_bytes.h"
#include "readers/solution_reader.h"
#include "records/findings.h"

bool ReadSolutionFile(std::vector<ShipClass>& ships, int& num_ships, const char* file_name) {
  std::string text;
  if (!kavren::read_file_bytes(file_name, text)) {
    std::cout << "ErrorA01. File Open Error: Cannot find the solution file." << std::endl;
    kavren::end_run(kavren::rule_info(kavren::Rule::solution_file).exit_status);
  }
  kavren::Findings findings(true);
  kavren::read_solution(text, ships, num_ships, findings);
  return kavren::announce(findings);
}
