// Times a session against verify() on the files of a folder (default: the working
// directory): verify() with the options given, then a session that verified the file once
// verifying (a) candidates that differ from it in one thrust number of one ship, each a new
// one, and (b) candidates it has seen in full. Medians of the repetitions, and the ratios;
// every session report is compared with verify()'s.
// Usage: bench_session [folder] [repetitions] [first|all]
// Workers: KAVREN_THREADS (default 1 here, the figure the ratios are stated for).
#include "kavren/session.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "kavren/verify.h"
#include "readers/file_bytes.h"

namespace {

using Clock = std::chrono::steady_clock;

double median(std::vector<double> v) {
  std::sort(v.begin(), v.end());
  return v[v.size() / 2];
}

template <class F>
double ms(F&& f) {
  const auto start = Clock::now();
  f();
  return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

// The text with the last digit of one thrust number changed: the n-th thrust line with a
// thrust of the ship in the middle of the file, the digit moved by 1 + n % 8.
std::string one_number_changed(const std::string& text, int n) {
  std::size_t at = text.size() / 2;
  at = text.find('\n', at) + 1;
  for (int seen = 0; at < text.size();) {
    const std::size_t end = text.find('\n', at);
    const std::string line = text.substr(at, end - at);
    int tokens = 0;
    bool in = false;
    std::size_t fourth_end = 0;
    for (std::size_t k = 0; k <= line.size(); ++k) {
      const bool blank = k == line.size() || line[k] == ' ' || line[k] == '\t';
      if (!blank && !in) ++tokens;
      if (blank && in && tokens == 4) fourth_end = k;
      in = !blank;
    }
    const char digit = fourth_end > 0 ? line[fourth_end - 1] : 'x';
    if (tokens == 6 && digit >= '1' && digit <= '9' && seen++ == n) {
      std::string changed = text;
      changed[at + fourth_end - 1] = static_cast<char>('1' + (digit - '1' + 1 + n % 8) % 9);
      return changed;
    }
    at = end + 1;
  }
  std::fprintf(stderr, "no thrust line to change\n");
  std::exit(1);
}

bool same(const kavren::Report& a, const kavren::Report& b) {
  return a.checker_output == b.checker_output && a.exit_status == b.exit_status &&
         a.findings.size() == b.findings.size() && a.constraints.size() == b.constraints.size() &&
         a.score_file == b.score_file;
}

}  // namespace

int main(int argc, char** argv) {
  const std::string folder = argc > 1 ? argv[1] : ".";
  const int repetitions = argc > 2 ? std::max(1, std::atoi(argv[2])) : 11;
  kavren::Options options;
  options.mode =
      argc > 3 && std::strcmp(argv[3], "all") == 0 ? kavren::Mode::all : kavren::Mode::first;
  const char* threads = std::getenv("KAVREN_THREADS");
  options.workers = threads != nullptr ? kavren::workers_from_text(threads) : 1;
  std::string text;
  if (!kavren::read_file_bytes((folder + "/Result.txt").c_str(), text)) {
    std::fprintf(stderr, "cannot read %s/Result.txt\n", folder.c_str());
    return 2;
  }
  const kavren::Catalogue catalogue =
      kavren::Catalogue::from_file(folder + "/KAVREN_Asteroids_Data.txt");

  std::vector<double> whole, changed, seen;
  kavren::Session session(catalogue);
  session.verify(text, options);
  bool equal = true;
  std::size_t from_cache = 0, ships = 0;
  for (int k = 0; k < repetitions; ++k) {
    const std::string candidate = one_number_changed(text, k);
    kavren::Report expected, got;
    whole.push_back(ms([&] { expected = kavren::verify(catalogue, candidate, options); }));
    changed.push_back(ms([&] { got = session.verify(candidate, options); }));
    equal = equal && same(got, expected);
    from_cache = got.statistics.ships_cached;
    ships = got.statistics.ships_cached + got.statistics.ships_verified;
    seen.push_back(ms([&] { got = session.verify(candidate, options); }));
    equal = equal && same(got, expected);
  }
  const double w = median(whole), c = median(changed), s = median(seen);
  std::printf("verify, %d worker(s): %.2f ms\n", options.workers, w);
  std::printf(
      "session, one thrust number of one ship changed: %.3f ms (%zu of %zu ships "
      "from the cache): %.1f times faster\n",
      c, from_cache, ships, w / c);
  std::printf("session, every ship seen before: %.3f ms: %.1f times faster\n", s, w / s);
  std::printf("cache: %zu ships, %.1f MB; reports equal to verify(): %s\n", session.cached_ships(),
              session.cache_bytes() / 1e6, equal ? "yes" : "NO");
  return equal ? 0 : 1;
}
