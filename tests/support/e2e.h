// End-to-end harness: runs a built binary in a fresh temporary directory that holds the
// given files and captures its standard output bytes, exit status and score file.
#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

// Defined in builds with AddressSanitizer or ThreadSanitizer, whose runtime reserves
// terabytes of address space, keeps freed memory in quarantine and needs descriptors of
// its own.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define KAVREN_SANITIZED 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define KAVREN_SANITIZED 1
#endif
#endif

namespace kavren::test {

struct RunResult {
  std::string out;                   // standard output, byte for byte
  std::string err;                   // standard error
  int status = -1;                   // exit status; 128 + signal when killed
  std::optional<std::string> score;  // bytes of ScoreData.txt, if the run left one
};

// A directory under the system's temporary folder, removed with everything in it.
class TempDir {
 public:
  TempDir();
  ~TempDir();
  TempDir(const TempDir&) = delete;
  TempDir& operator=(const TempDir&) = delete;
  const std::string& path() const { return path_; }
  void write(const std::string& name, const std::string& bytes) const;
  std::optional<std::string> read(const std::string& name) const;

 private:
  std::string path_;
};

std::string checker_binary();

// A limit the child sets on itself (setrlimit's resource and value) before the binary
// starts.
struct ResourceLimit {
  int resource;
  unsigned long long value;
};

// Runs `binary` with `args` inside `dir`; extra environment entries "NAME=value".
RunResult run_in(const std::string& dir, const std::string& binary,
                 const std::vector<std::string>& args = {},
                 const std::vector<std::string>& env = {},
                 const std::vector<ResourceLimit>& limits = {});

// Runs `body` in a child process inside `dir`, under `limits`, with its standard output
// and error captured; the child ends with status 127 if `body` returns.
RunResult run_child(const std::string& dir, const std::function<void()>& body,
                    const std::vector<ResourceLimit>& limits = {});

// Writes `files` into a fresh directory and runs kavren-check there.
RunResult run_check(const std::map<std::string, std::string>& files,
                    const std::vector<std::string>& args = {},
                    const std::vector<std::string>& env = {});

// A catalogue text: header line, then 60,000 records "id epoch a e i raan argp M".
// Rows not in `planted` get a harmless default orbit (a = 2.5 AU, e = 0.1).
struct CatalogueRow {
  double epoch = 64328.0, a = 2.5, e = 0.1, i = 5.0, raan = 10.0, argp = 20.0, M = 30.0;
};
std::string catalogue_text(const std::map<int, CatalogueRow>& planted = {});

}  // namespace kavren::test
