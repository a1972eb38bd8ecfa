// Any bytes as the asteroid catalogue: the reader must fill the table without reading
// or writing memory it does not own.
#include <cstddef>
#include <cstdint>

#include "fuzz_support.h"
#include "readers/catalogue.h"
#include "records/termination.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string path = kavren::fuzz::write_input("catalogue.txt", data, size);
  try {
    ReadAsteroidsData(path.c_str());
  } catch (const kavren::Termination&) {
  }
  clear_info();
  return 0;
}
