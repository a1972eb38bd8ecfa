#include "mining/score.h"

#include <charconv>
#include <cmath>
#include <string>

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
  // Each row: the ID right-aligned in 20 columns, the mass in 30, in general notation
  // with 17 significant digits (enough to read back the exact double), as a stream with
  // setw and setprecision(17) writes them; to_chars is specified to write what printf's
  // "%.17g" writes, without a stream's cost per number.
  auto padded = [](std::string& out, const char* first, const char* last, std::size_t width) {
    const std::size_t size = static_cast<std::size_t>(last - first);
    if (size < width) out.append(width - size, ' ');
    out.append(first, size);
  };
  std::string file = std::to_string(store.size()) + "\n";
  file.reserve(file.size() + store.size() * 51);
  char buffer[64];
  for (const StoreDmStruct& mined : store) {
    auto written = std::to_chars(buffer, buffer + sizeof buffer, mined.asteroid_id);
    padded(file, buffer, written.ptr, 20);
    written =
        std::to_chars(buffer, buffer + sizeof buffer, mined.mass, std::chars_format::general, 17);
    padded(file, buffer, written.ptr, 30);
    file += '\n';
  }
  return file;
}

}  // namespace kavren
