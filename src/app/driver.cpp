#include "app/driver.h"

#include <iostream>
#include <vector>

#include "app/summary.h"
#include "lowthrust/arc_checks.h"
#include "mining/ledger.h"
#include "mining/score.h"
#include "readers/catalogue.h"
#include "readers/solution_reader.h"
#include "records/records.h"
#include "records/termination.h"

namespace kavren {
namespace {

// Every stage prints its own message; a false return ends the run with status 0.
int run_stages() {
  ReadAsteroidsData("KAVREN_Asteroids_Data.txt");
  return check_solution("Result.txt", true);
}

}  // namespace

int check_solution(const char* solution_file, bool release_catalogue) {
  std::vector<ShipClass> ships;
  int num_ships = 0;
  if (!ReadSolutionFile(ships, num_ships, solution_file)) return 0;

  // The loop runs over the reported ship count, never past the ships actually held.
  const int checked = num_ships < static_cast<int>(ships.size()) ? num_ships
                                                                  : static_cast<int>(ships.size());
  for (int index = 0; index < checked; ++index) {
    if (!ships[index].check_all()) return 0;
  }

  std::vector<DmStructAsteroid> dm_asteroids(kNumAsteroids);
  std::vector<StoreDmStruct> store_dm;
  if (!CheckVisitDm(ships, checked, dm_asteroids, store_dm)) return 0;
  if (!CheckBuringArc(ships)) return 0;

  double total_resource_mass = 0.0;
  if (!Test_MotherShipNum(num_ships, store_dm, total_resource_mass)) return 0;
  if (!Output_Solution(store_dm)) return 0;
  if (release_catalogue) clear_info();

  print_summary(std::cout, num_ships, store_dm.size(), total_resource_mass);
  return 0;
}

int run_verifier(int argc) {
  // Only the argument count matters: any argument is refused before anything is read.
  // A count of 0 (no program name) runs like no argument.
  if (argc >= 2) {
    std::cout << "Error000. The number of input parameters is incorrect." << std::endl;
    std::cout << "The input is consisted with two files: the front one contains the "
                 "KAVREN_Asteroids_Data.txt data, and the behind one takes the Result.txt."
              << std::endl;
    return 0;
  }
  try {
    return run_stages();
  } catch (const Termination& end) {
    std::cout.flush();
    return end.status();
  }
}

}  // namespace kavren
