// Any bytes as the solution, checked end to end against a fixed catalogue (the file
// named by KAVREN_FUZZ_CATALOGUE, loaded once).
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "app/driver.h"
#include "fuzz_support.h"
#include "readers/catalogue.h"
#include "records/termination.h"

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  const char* catalogue = std::getenv("KAVREN_FUZZ_CATALOGUE");
  kavren::fuzz::workdir();
  try {
    ReadAsteroidsData(catalogue != nullptr ? catalogue : "KAVREN_Asteroids_Data.txt");
  } catch (const kavren::Termination&) {
  }
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string path = kavren::fuzz::write_input("Result.txt", data, size);
  try {
    kavren::check_solution(path.c_str(), false);
  } catch (const kavren::Termination&) {
  }
  return 0;
}
