#include "mining/score.h"

#include <cmath>
#include <fstream>
#include <iomanip>
#include <iostream>

#include "records/termination.h"

namespace kavren {
namespace {

// The fleet may grow with the average resource mass it delivers per ship: up to
// 2·exp(0.004 · average) ships, never more than 100.
constexpr double kGrowthPerKg = 0.004;
constexpr int kMaxShips = 100;

int allowed_ships(int num_ships, double total) {
  if (num_ships == 0) {
    // No ships: the average is total / 0, i.e. +inf or NaN (the masses are never
    // negative), and either allows the full fleet. Spelled out so no division by zero
    // is evaluated.
    return kMaxShips;
  }
  const double e = std::exp(kGrowthPerKg * total / num_ships);
  const double doubled = e + e;
  // Anything from 101 up, +inf and NaN is capped; below that the value is in [0, 101)
  // and truncates toward zero without leaving the int range.
  if (!(doubled < kMaxShips + 1.0)) return kMaxShips;
  return static_cast<int>(doubled);
}

}  // namespace
}  // namespace kavren

bool Test_MotherShipNum(int num_ships, const std::vector<StoreDmStruct>& store, double& total) {
  double sum = 0.0;
  for (const StoreDmStruct& mined : store) sum += mined.mass;
  total = sum;

  const int maximum = kavren::allowed_ships(num_ships, sum);
  if (maximum < num_ships) {
    std::cout << "Error301. Mining Ship Number Error: The number of Mining Ships is " << num_ships
              << ", greater than the appropriable maximum number " << maximum << "."
              << std::endl;
    kavren::end_run(3);
  }
  return true;
}

bool Output_Solution(const std::vector<StoreDmStruct>& store) {
  std::ofstream file("./ScoreData.txt", std::ios::out | std::ios::trunc);
  if (!file.is_open()) {
    std::cout << "ErrorA00. File Open Error: Cannot find this file 'ScoreData.txt'." << std::endl;
    kavren::end_run(0);
  }
  file << store.size() << std::endl;
  // Masses in general notation with 17 significant digits, enough to read back the
  // exact double.
  file << std::setprecision(17);
  for (const StoreDmStruct& mined : store) {
    file << std::setw(20) << mined.asteroid_id << std::setw(30) << mined.mass << std::endl;
  }
  // A failed flush or close does not change the verdict.
  file.close();
  return true;
}
