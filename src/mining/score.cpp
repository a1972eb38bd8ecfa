#include "mining/score.h"

#include <cmath>
#include <iomanip>
#include <sstream>

#include "kavren/limits.h"

namespace kavren {
namespace {

// The fleet may grow with the average resource mass it delivers per ship: up to
// 2·exp(0.004 · average) ships, never more than 100.
int allowed_ships(int num_ships, double total) {
  if (num_ships == 0) {
    // No ships: the average is total / 0, i.e. +inf or NaN (the masses are never
    // negative), and either allows the full fleet. Spelled out so no division by zero
    // is evaluated.
    return kMaxShips;
  }
  const double e = std::exp(kShipGrowthPerKg * total / num_ships);
  const double doubled = e + e;
  // Anything from 101 up, +inf and NaN is capped; below that the value is in [0, 101)
  // and truncates toward zero without leaving the int range.
  if (!(doubled < kMaxShips + 1.0)) return kMaxShips;
  return static_cast<int>(doubled);
}

}  // namespace

bool check_ship_count(int num_ships, const std::vector<StoreDmStruct>& store, double& total,
                      Findings& findings) {
  double sum = 0.0;
  for (const StoreDmStruct& mined : store) sum += mined.mass;
  total = sum;
  const int maximum = allowed_ships(num_ships, sum);
  return findings.check(Rule::ship_count, !(maximum < num_ships), num_ships, maximum, {}, 0, [&] {
    return "Error301. Mining Ship Number Error: The number of Mining Ships is " +
           std::to_string(num_ships) + ", greater than the appropriable maximum number " +
           std::to_string(maximum) + ".\n";
  });
}

std::string score_file_text(const std::vector<StoreDmStruct>& store) {
  std::ostringstream file;
  file << store.size() << '\n';
  // Masses in general notation with 17 significant digits, enough to read back the
  // exact double.
  file << std::setprecision(17);
  for (const StoreDmStruct& mined : store) {
    file << std::setw(20) << mined.asteroid_id << std::setw(30) << mined.mass << '\n';
  }
  return file.str();
}

}  // namespace kavren
