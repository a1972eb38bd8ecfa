#include "mining/ledger.h"

#include <cmath>
#include <cstddef>
#include <sstream>
#include <string>
#include <utility>

#include "kavren/limits.h"

namespace kavren {
namespace {

const char* const kMinerMismatch = "Error803. Mining Data Error on the line";
const char* const kMinerMismatchText =
    ": The mass change of the Mining Ship does not match the mass of the miner on the "
    "first rendezvous to the asteroid (exceeding the allowable error).";

// How far the mass left at a first rendezvous is from the miner's.
double miner_mass_error(double mass_change) {
  return std::fabs(mass_change + kMinerMass);
}

void swap_slots(DmStructAsteroid& record) {
  std::swap(record.line1, record.line2);
  std::swap(record.time_of_LRE1, record.time_of_LRE2);
  std::swap(record.epoch1, record.epoch2);
  std::swap(record.mass_change1, record.mass_change2);
}

}  // namespace

int check_mining_pair(DmStructAsteroid& record, Findings& findings) {
  // The earlier rendezvous deploys the miner, the later one collects; equal epochs stay
  // as met.
  if (record.epoch1 > record.epoch2) swap_slots(record);
  const long long line1 = printed_line(record.line1);
  const long long line2 = printed_line(record.line2);
  bool valid = true;

  const double interval = record.epoch2 - record.epoch1;
  const bool long_enough = !(interval < kMinMiningInterval);
  valid = valid && long_enough;
  if (!findings.check(Rule::mining_interval, long_enough, interval, kMinMiningInterval,
                      {line2, line1}, 0, [&] {
                        return line_message("Error802. Mining Data Error on the line", line2,
                                            ": The time interval between two rendezvous should "
                                            "not be shorter than one year.");
                      })) {
    return 0;
  }
  const double miner_error = miner_mass_error(record.mass_change1);
  const bool miner_left = !(miner_error > kMassTolerance);
  valid = valid && miner_left;
  if (!findings.check(Rule::miner_mass, miner_left, miner_error, kMassTolerance, {line1}, 0,
                      [&] { return line_message(kMinerMismatch, line1, kMinerMismatchText); })) {
    return 0;
  }
  const double allowed = interval * kMinedPerYear / kJulianYear + kMassTolerance;
  const double collected = record.mass_change2;
  auto unreasonable = [&] {
    return line_message("Error804. Mining Data Error on the line ", line2,
                        ": The mass of resources obtained on the asteroid is unreasonable.");
  };
  const bool within = !(collected > allowed);
  const bool something = !(collected <= 0.0);
  valid = valid && within && something;
  if (!findings.check(Rule::collected_mass, within, collected, allowed, {line2}, 0, unreasonable) ||
      !findings.check(Rule::collected_something, something, collected, 0.0, {line2}, 0,
                      unreasonable)) {
    return 0;
  }
  if (!valid) return 0;
  // The resources count only if the collecting ship unloaded at the Earth at or after
  // the collection.
  return record.epoch2 <= record.time_of_LRE2 ? 1 : -1;
}

bool check_mining_ledger(const std::vector<ShipClass>& ships, int num_ships,
                         std::vector<DmStructAsteroid>& asteroid_table,
                         std::vector<StoreDmStruct>& store, Findings& findings) {
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
        continue;
      }
      const bool third = record.num_rendezvous >= 2;
      const long long shown = printed_line(line);
      if (!findings.check(Rule::rendezvous_count, !third, record.num_rendezvous + 1.0, 2.0, {shown},
                          ship.ship_id, [&] {
                            return line_message("Error805. Mining Data Error on the line", shown,
                                                ": The asteroid is rendezvous more than twice.");
                          })) {
        return false;
      }
      if (third) {
        if (record.num_rendezvous < 3) record.num_rendezvous = 3;
        continue;
      }
      record.num_rendezvous = 2;
      record.line2 = line;
      record.time_of_LRE2 = time_of_LRE;
      record.epoch2 = epoch;
      record.mass_change2 = mass_change;
      const int verdict = check_mining_pair(record, findings);
      if (findings.stopped()) return false;
      if (verdict == 1) {
        StoreDmStruct mined;
        mined.asteroid_id = visit.body_id;
        mined.mass = record.mass_change2;  // after the slots were put in time order
        store.push_back(mined);
      }
    }
  }

  // An asteroid met only once must have received its miner. The line number of this
  // message is printed as a floating-point value (large numbers in exponent form).
  for (const DmStructAsteroid& record : asteroid_table) {
    if (record.num_rendezvous != 1) continue;
    const double miner_error = miner_mass_error(record.mass_change1);
    const long long line = printed_line(record.line1);
    if (!findings.check(Rule::miner_mass, !(miner_error > kMassTolerance), miner_error,
                        kMassTolerance, {line}, 0, [&] {
                          std::ostringstream text;
                          text << kMinerMismatch << static_cast<double>(record.line1) + 1.0
                               << kMinerMismatchText << '\n';
                          return text.str();
                        })) {
      return false;
    }
  }
  return true;
}

}  // namespace kavren
