#include "readers/file_bytes.h"

#include <cstdio>

namespace kavren {

bool read_file_bytes(const char* file_name, std::string& bytes) {
  bytes.clear();
  std::FILE* file = std::fopen(file_name, "rb");
  if (file == nullptr) return false;
  // A file whose size is known is read into a string of that size at once; anything
  // else (a pipe, a file that grows) in chunks until its end.
  long size = -1;
  if (std::fseek(file, 0, SEEK_END) == 0) size = std::ftell(file);
  if (std::fseek(file, 0, SEEK_SET) != 0) size = -1;
  std::size_t used = 0;
  if (size > 0) {
    bytes.resize(static_cast<std::size_t>(size));
    used = std::fread(&bytes[0], 1, bytes.size(), file);
  }
  constexpr std::size_t kChunk = 1 << 20;
  char probe = 0;
  const bool more = size <= 0 || (used == bytes.size() && std::fread(&probe, 1, 1, file) == 1);
  if (size > 0 && more) bytes.push_back(probe), ++used;
  if (more) {
    for (;;) {
      bytes.resize(used + kChunk);
      const std::size_t got = std::fread(&bytes[used], 1, kChunk, file);
      used += got;
      if (got < kChunk) break;
    }
  }
  bytes.resize(used);
  if (bytes.capacity() > used + kChunk) bytes.shrink_to_fit();
  std::fclose(file);
  return true;
}

}  // namespace kavren
