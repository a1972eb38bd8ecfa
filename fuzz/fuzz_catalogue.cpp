// Any bytes as the asteroid catalogue: the reader must fill the table without reading
// or writing memory it does not own.
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "readers/catalogue.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  kavren::AsteroidTable table;
  kavren::read_catalogue(std::string_view(reinterpret_cast<const char*>(data), size), table);
  return 0;
}
