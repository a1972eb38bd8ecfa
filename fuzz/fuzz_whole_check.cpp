// Any bytes as the solution, verified in memory against a fixed catalogue (the file
// named by KAVREN_FUZZ_CATALOGUE, loaded once), in both modes: a run that goes on past
// the first violation must still name that violation first.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string_view>

#include "fuzz_support.h"
#include "kavren/verify.h"

namespace {
std::unique_ptr<kavren::Catalogue> g_catalogue;
}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  const char* catalogue = std::getenv("KAVREN_FUZZ_CATALOGUE");
  kavren::fuzz::workdir();
  g_catalogue = std::make_unique<kavren::Catalogue>(
      kavren::Catalogue::from_file(catalogue != nullptr ? catalogue : "KAVREN_Asteroids_Data.txt"));
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  kavren::Options options;
  options.workers = 1;
  const kavren::Report first = kavren::verify(*g_catalogue, text, options);
  options.mode = kavren::Mode::all;
  const kavren::Report all = kavren::verify(*g_catalogue, text, options);
  if (first.checker_output != all.checker_output || first.exit_status != all.exit_status ||
      first.score_file != all.score_file) {
    std::abort();
  }
  return 0;
}
