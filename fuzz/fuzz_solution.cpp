// Any bytes as the solution file, read and assembled into ships.
#include <cstddef>
#include <cstdint>
#include <vector>

#include "fuzz_support.h"
#include "readers/solution_reader.h"
#include "records/termination.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string path = kavren::fuzz::write_input("Result.txt", data, size);
  std::vector<ShipClass> ships;
  int num_ships = 0;
  try {
    ReadSolutionFile(ships, num_ships, path.c_str());
  } catch (const kavren::Termination&) {
  }
  return 0;
}
