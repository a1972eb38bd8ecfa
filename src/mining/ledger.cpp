#include "mining/ledger.h"

#include <cmath>
#include <cstddef>
#include <iostream>
#include <utility>

namespace kavren {
namespace {

// Mass a first rendezvous leaves behind with the miner, and the allowance on it.
constexpr double kMinerMass = 40.0;
constexpr double kMassTolerance = 0.001;
// A hair below a Julian year, so that exactly 365.25 days (and any rounding error below
// 1e-8 days) still counts as a full year of mining.
constexpr double kOneYearDays = 365.24999999;
// Resources a miner gathers: 10 kg per year of 365.25 days, plus the allowance.
constexpr double kMassPerYear = 10.0;
constexpr double kYearDays = 365.25;

// Line numbers are printed as the 0-based index plus one; widened first so that even
// the largest index cannot overflow.
long long printed_line(int line_index) { return static_cast<long long>(line_index) + 1; }

bool leaves_no_miner(double mass_change) {
  return std::fabs(mass_change + kMinerMass) > kMassTolerance;
}

void print_miner_mismatch_prefix() {
  std::cout << "Error803. Mining Data Error on the line";
}

const char* const kMinerMismatchText =
    ": The mass change of the Mining Ship does not match the mass of the miner on the "
    "first rendezvous to the asteroid (exceeding the allowable error).";

void swap_slots(DmStructAsteroid& record) {
  std::swap(record.line1, record.line2);
  std::swap(record.time_of_LRE1, record.time_of_LRE2);
  std::swap(record.epoch1, record.epoch2);
  std::swap(record.mass_change1, record.mass_change2);
}

}  // namespace
}  // namespace kavren

int check_DmStructAsteroid(DmStructAsteroid& record) {
  using namespace kavren;
  // The earlier rendezvous deploys the miner, the later one collects; equal epochs stay
  // as met.
  if (record.epoch1 > record.epoch2) swap_slots(record);

  const double interval = record.epoch2 - record.epoch1;
  if (interval < kOneYearDays) {
    std::cout << "Error802. Mining Data Error on the line" << printed_line(record.line2)
              << ": The time interval between two rendezvous should not be shorter than one "
                 "year."
              << std::endl;
    return 0;
  }
  if (leaves_no_miner(record.mass_change1)) {
    print_miner_mismatch_prefix();
    std::cout << printed_line(record.line1) << kMinerMismatchText << std::endl;
    return 0;
  }
  const double allowed = interval * kMassPerYear / kYearDays + kMassTolerance;
  if (record.mass_change2 > allowed || record.mass_change2 <= 0.0) {
    std::cout << "Error804. Mining Data Error on the line " << printed_line(record.line2)
              << ": The mass of resources obtained on the asteroid is unreasonable."
              << std::endl;
    return 0;
  }
  // The resources count only if the collecting ship unloaded at the Earth at or after
  // the collection.
  return record.epoch2 <= record.time_of_LRE2 ? 1 : -1;
}

bool CheckVisitDm(std::vector<ShipClass>& ships, int num_ships,
                  std::vector<DmStructAsteroid>& asteroid_table,
                  std::vector<StoreDmStruct>& store) {
  using namespace kavren;
  // Never walk past the ships actually held, whatever count is reported.
  std::size_t ship_count = num_ships > 0 ? static_cast<std::size_t>(num_ships) : 0;
  if (ship_count > ships.size()) ship_count = ships.size();

  for (std::size_t s = 0; s < ship_count; ++s) {
    const ShipClass& ship = ships[s];
    const double time_of_LRE = ship.get_time_of_LRE();
    for (const VisitClass& visit : ship.visits) {
      // The reader admits only catalogue IDs 1..60000; a rendezvous naming anything
      // outside the ledger has no asteroid to be booked against and is passed over.
      if (visit.body_id < 1 || static_cast<std::size_t>(visit.body_id) > asteroid_table.size()) {
        continue;
      }
      DmStructAsteroid& record = asteroid_table[static_cast<std::size_t>(visit.body_id) - 1];
      const int line = visit.state_after.line_index;
      const double epoch = visit.state_after.epoch;
      const double mass_change = visit.mass_change;
      if (record.num_rendezvous == 0) {
        record.num_rendezvous = 1;
        record.line1 = line;
        record.time_of_LRE1 = time_of_LRE;
        record.epoch1 = epoch;
        record.mass_change1 = mass_change;
      } else if (record.num_rendezvous == 1) {
        record.num_rendezvous = 2;
        record.line2 = line;
        record.time_of_LRE2 = time_of_LRE;
        record.epoch2 = epoch;
        record.mass_change2 = mass_change;
        const int verdict = check_DmStructAsteroid(record);
        if (verdict == 0) return false;
        if (verdict == 1) {
          StoreDmStruct mined;
          mined.asteroid_id = visit.body_id;
          mined.mass = record.mass_change2;  // after the slots were put in time order
          store.push_back(mined);
        }
      } else {
        std::cout << "Error805. Mining Data Error on the line" << printed_line(line)
                  << ": The asteroid is rendezvous more than twice." << std::endl;
        return false;
      }
    }
  }

  // An asteroid met only once must have received its miner. The line number of this
  // message is printed as a floating-point value (large numbers in exponent form).
  for (const DmStructAsteroid& record : asteroid_table) {
    if (record.num_rendezvous == 1 && leaves_no_miner(record.mass_change1)) {
      print_miner_mismatch_prefix();
      std::cout << static_cast<double>(record.line1) + 1.0 << kMinerMismatchText << std::endl;
      return false;
    }
  }
  return true;
}
