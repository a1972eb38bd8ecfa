// Any bytes as the solution file, read and assembled into ships by a collector that stops
// at the first finding and by one that goes on.
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "readers/solution_reader.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  for (bool stop_at_first : {true, false}) {
    std::vector<ShipClass> ships;
    int num_ships = 0;
    kavren::Findings findings(stop_at_first);
    kavren::read_solution(text, ships, num_ships, findings);
  }
  return 0;
}
