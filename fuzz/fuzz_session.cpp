// A session driven by random edits of a valid scenario (the solution named by
// KAVREN_FUZZ_SOLUTION, with the catalogue of KAVREN_FUZZ_CATALOGUE): the input is a list
// of edits (bytes changed, inserted or deleted, lines repeated, moved or dropped), and
// at every checkpoint the session's report of the edited text, then of the base, must
// equal verify()'s. The session is new for every input, with a cache bound the input
// chooses, so that a failure replays from its input alone.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

#include "fuzz_support.h"
#include "kavren/json.h"
#include "kavren/session.h"
#include "kavren/verify.h"

namespace {

std::unique_ptr<kavren::Catalogue> g_catalogue;
std::string g_base;

std::string read_all(const char* path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) std::abort();
  return std::string(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
}

const char* setting(const char* name, const char* fallback) {
  const char* value = std::getenv(name);
  return value != nullptr ? value : fallback;
}

struct Input {
  const uint8_t* data;
  size_t size;
  size_t at = 0;
  bool more() const { return at < size; }
  unsigned byte() { return at < size ? data[at++] : 0; }
  size_t number(size_t below) {
    const size_t n = byte() << 16 | byte() << 8 | byte();
    return below == 0 ? 0 : n % below;
  }
};

// The start of the line that holds byte `at`.
size_t line_start(const std::string& text, size_t at) {
  const size_t newline = at == 0 ? std::string::npos : text.rfind('\n', at - 1);
  return newline == std::string::npos ? 0 : newline + 1;
}

size_t line_end(const std::string& text, size_t at) {
  const size_t newline = text.find('\n', at);
  return newline == std::string::npos ? text.size() : newline + 1;
}

void edit(std::string& text, Input& in) {
  const unsigned kind = in.byte() % 6;
  const size_t at = in.number(text.size() + 1);
  if (kind == 0 && at < text.size()) {
    text[at] = static_cast<char>(in.byte());
  } else if (kind == 1) {
    const size_t n = in.byte() % 8;
    for (size_t k = 0; k < n; ++k)
      text.insert(text.begin() + static_cast<long>(at), '0' + in.byte() % 10);
  } else if (kind == 2 && at < text.size()) {
    text.erase(at, 1 + in.byte() % 16);
  } else if (kind >= 3) {
    // Whole lines: repeat a run of them (3), drop it (4), or move it elsewhere (5).
    const size_t begin = line_start(text, at);
    size_t end = begin;
    for (unsigned n = 1 + in.byte() % 64; n > 0 && end < text.size(); --n)
      end = line_end(text, end);
    const std::string run = text.substr(begin, end - begin);
    if (kind == 3) {
      text.insert(end, run);
    } else {
      text.erase(begin, end - begin);
      if (kind == 5) text.insert(line_start(text, in.number(text.size() + 1)), run);
    }
  }
}

void expect_as_verify(kavren::Session& session, const std::string& text,
                      const kavren::Options& options) {
  const kavren::Report expected = kavren::verify(*g_catalogue, text, options);
  const kavren::Report got = session.verify(text, options);
  if (kavren::report_to_json(got) != kavren::report_to_json(expected) ||
      got.trajectories.size() != expected.trajectories.size()) {
    std::abort();
  }
  for (size_t k = 0; k < got.trajectories.size(); ++k) {
    const auto& a = got.trajectories[k].points;
    const auto& b = expected.trajectories[k].points;
    if (got.trajectories[k].ship != expected.trajectories[k].ship || a.size() != b.size() ||
        (!a.empty() && std::memcmp(a.data(), b.data(), a.size() * sizeof a[0]) != 0)) {
      std::abort();
    }
  }
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  kavren::fuzz::workdir();
  g_catalogue = std::make_unique<kavren::Catalogue>(
      kavren::Catalogue::from_file(setting("KAVREN_FUZZ_CATALOGUE", "KAVREN_Asteroids_Data.txt")));
  g_base = read_all(setting("KAVREN_FUZZ_SOLUTION", "Result.txt"));
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Input in{data, size};
  const unsigned setup = in.byte();
  kavren::Options options;
  options.workers = 1;
  options.mode = setup & 1 ? kavren::Mode::all : kavren::Mode::first;
  options.trajectories = (setup & 2) != 0;
  // A bound of a few ships' worth, or the default.
  kavren::Session session(*g_catalogue, setup & 4 ? 20000 : kavren::Session::kDefaultCacheBytes);
  session.verify(g_base, options);
  std::string text = g_base;
  for (int checkpoints = 0; in.more() && checkpoints < 3; ++checkpoints) {
    for (unsigned edits = 1 + in.byte() % 4; edits > 0; --edits) edit(text, in);
    expect_as_verify(session, text, options);
    expect_as_verify(session, g_base, options);
  }
  return 0;
}
