#include "readers/file_bytes.h"

#include <sys/stat.h>

#include <cstdio>

namespace kavren {

bool read_file_bytes(const char* file_name, std::string& bytes) {
  bytes.clear();
  std::FILE* file = std::fopen(file_name, "rb");
  if (file == nullptr) return false;
  // A regular file is read into a string of its size at once; anything else (a pipe, a
  // directory, which delivers nothing) and a file that grows meanwhile, in chunks until
  // the end.
  struct stat info {};
  std::size_t used = 0;
  if (fstat(fileno(file), &info) == 0 && S_ISREG(info.st_mode) && info.st_size > 0) {
    bytes.resize(static_cast<std::size_t>(info.st_size));
    used = std::fread(&bytes[0], 1, bytes.size(), file);
    if (used < bytes.size()) {
      bytes.resize(used);
      std::fclose(file);
      return true;
    }
    char probe = 0;
    if (std::fread(&probe, 1, 1, file) != 1) {
      std::fclose(file);
      return true;
    }
    bytes.push_back(probe);
    ++used;
  }
  constexpr std::size_t kChunk = 1 << 20;
  for (;;) {
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
