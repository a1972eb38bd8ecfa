#include "readers/file_bytes.h"

#include <cstdio>

namespace kavren {

bool read_file_bytes(const char* file_name, std::string& bytes) {
  bytes.clear();
  std::FILE* file = std::fopen(file_name, "rb");
  if (file == nullptr) return false;
  constexpr std::size_t kChunk = 1 << 20;
  std::size_t used = 0;
  while (true) {
    bytes.resize(used + kChunk);
    const std::size_t got = std::fread(&bytes[used], 1, kChunk, file);
    used += got;
    if (got < kChunk) break;
  }
  bytes.resize(used);
  std::fclose(file);
  return true;
}

}  // namespace kavren
