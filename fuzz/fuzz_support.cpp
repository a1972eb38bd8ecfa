#include "fuzz_support.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <streambuf>

namespace kavren::fuzz {
namespace {

class NullBuffer : public std::streambuf {
 protected:
  int overflow(int c) override { return c == EOF ? 0 : c; }
  std::streamsize xsputn(const char*, std::streamsize n) override { return n; }
};

}  // namespace

const std::string& workdir() {
  static const std::string dir = [] {
    // Under $TMPDIR when set, so that the script can remove what a run leaves behind.
    const char* base = std::getenv("TMPDIR");
    std::string pattern =
        std::string(base != nullptr && *base != '\0' ? base : "/tmp") + "/kavren-fuzz-XXXXXX";
    if (mkdtemp(&pattern[0]) == nullptr || chdir(pattern.c_str()) != 0) std::abort();
    static NullBuffer sink;
    std::cout.rdbuf(&sink);
    return pattern;
  }();
  return dir;
}

std::string write_input(const char* name, const uint8_t* data, size_t size) {
  std::string path = workdir() + "/" + name;
  FILE* file = std::fopen(path.c_str(), "wb");
  if (file == nullptr) std::abort();
  if (size > 0 && std::fwrite(data, 1, size, file) != size) std::abort();
  std::fclose(file);
  return path;
}

}  // namespace kavren::fuzz
