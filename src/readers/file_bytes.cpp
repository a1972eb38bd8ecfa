#include "readers/file_bytes.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

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

MappedFile::~MappedFile() {
  if (map_ != nullptr) munmap(map_, mapped_);
}

bool MappedFile::open(const char* file_name) {
  const int fd = ::open(file_name, O_RDONLY | O_CLOEXEC);
  if (fd >= 0) {
    struct stat info {};
    if (fstat(fd, &info) == 0 && S_ISREG(info.st_mode) && info.st_size > 0) {
      const auto size = static_cast<std::size_t>(info.st_size);
      void* map = mmap(nullptr, size, PROT_READ, MAP_PRIVATE | MAP_POPULATE, fd, 0);
      if (map != MAP_FAILED) {
        ::close(fd);
        map_ = map;
        mapped_ = size;
        text_ = std::string_view(static_cast<const char*>(map), size);
        return true;
      }
    }
    ::close(fd);
  }
  // Not a regular file, empty, or not mapped: read it (a file that cannot be opened
  // fails here as well).
  if (!read_file_bytes(file_name, read_)) return false;
  text_ = read_;
  return true;
}

}  // namespace kavren
