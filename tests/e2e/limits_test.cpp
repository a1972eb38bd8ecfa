// Running out of a resource, and the limits for untrusted input: kavren-check and
// kavren-report in a child process under setrlimit (address space, open files, file
// size) and under --max-bytes and --deadline, and the API's own limits. Each case states
// the whole outcome: exit status, standard output, the one line of standard error and
// whether an output file is left.
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <chrono>
#include <iostream>
#include <stdexcept>
#include <string>
#include <vector>

#include "app/driver.h"
#include "kavren/verify.h"
#include "support/e2e.h"
#include "support/error_case.h"

namespace kavren::test {
namespace {

// The 100-ship bench scenario, and its hostile form (every event that ends an arc with
// lines far after the mission: reporting every finding, each such arc's last coast runs to
// its evaluation budget).
struct Bench {
  std::string result, hostile, catalogue;
};

const Bench& bench() {
  static const Bench made = [] {
    Bench b;
    const TempDir d;
    const RunResult synth =
        run_in(d.path(), KAVREN_SYNTH_BIN, {"bench", d.path() + "/case", "--ships", "100"});
    if (synth.status != 0) throw std::runtime_error("kavren-synth bench failed: " + synth.err);
    b.result = *d.read("case/Result.txt");
    b.catalogue = *d.read("case/KAVREN_Asteroids_Data.txt");
    b.hostile = *d.read("case/Result-late-arrivals.txt");
    return b;
  }();
  return made;
}

enum class Files { demo, bench, hostile };
enum class Tool {
  check,         // the kavren-check binary
  check_driver,  // kavren-check's driver in a forked child: the limit is set after the
                 // dynamic loader has opened its libraries with the one descriptor that
                 // the catalogue would need
  report,        // kavren-report, writing --json out.json
};

constexpr const char* kVerdict = "<the verdict without the limit>";

struct LimitCase {
  const char* name;
  Files files;
  Tool tool;
  std::vector<std::string> args;
  std::vector<ResourceLimit> limits;
  int status;
  std::string out;   // kVerdict: what the run without the limit prints
  std::string err;   // the whole standard error
  bool output_file;  // ScoreData.txt (kavren-check) or out.json (kavren-report) is left
};

void PrintTo(const LimitCase& c, std::ostream* os) {
  *os << c.name;
}

RunResult run_case(const LimitCase& c, const TempDir& dir) {
  switch (c.tool) {
    case Tool::check:
      return run_in(dir.path(), checker_binary(), c.args, {}, c.limits);
    case Tool::check_driver:
      return run_child(
          dir.path(),
          [] {
            const int status = run_checker(1);
            std::cout.flush();
            std::cerr.flush();
            _exit(status);
          },
          c.limits);
    case Tool::report: {
      std::vector<std::string> args = c.args;
      args.insert(args.end(), {"--json", "out.json"});
      return run_in(dir.path(), KAVREN_REPORT_BIN, args, {}, c.limits);
    }
  }
  return {};
}

std::vector<LimitCase> limit_cases() {
  constexpr unsigned long long kMiB = 1 << 20;
  const std::string demo_bytes = std::to_string(demo_scenario().result_text().size());
  return {
      {"OutOfAddressSpace",
       Files::bench,
       Tool::check,
       {},
       {{RLIMIT_AS, 16 * kMiB}},
       4,
       "",
       "kavren-check: out of memory while reading KAVREN_Asteroids_Data.txt\n",
       false},
      {"NoDescriptorForTheCatalogue",
       Files::demo,
       Tool::check_driver,
       {},
       {{RLIMIT_NOFILE, 3}},
       1,
       "ErrorA00: The file of Asteroid Data cannot be found.\n",
       "",
       false},
      // A failed write of the score file does not change the verdict; no truncated file
      // is left.
      {"ScoreFileOverTheSizeLimit",
       Files::demo,
       Tool::check,
       {},
       {{RLIMIT_FSIZE, 1000}},
       0,
       kVerdict,
       "kavren-check: cannot write ScoreData.txt: File too large\n",
       false},
      {"ReportOutOfAddressSpace",
       Files::bench,
       Tool::report,
       {},
       {{RLIMIT_AS, 16 * kMiB}},
       2,
       "",
       "kavren-report: out of memory while verifying Result.txt\n",
       false},
      {"ReportOverTheByteLimit",
       Files::demo,
       Tool::report,
       {"--max-bytes", "1000"},
       {},
       2,
       "",
       "kavren-report: cannot verify Result.txt: the solution holds " + demo_bytes +
           " bytes, more than the limit of 1000\n",
       false},
      // A millisecond: far less than reading the file takes.
      {"ReportPastTheDeadline",
       Files::hostile,
       Tool::report,
       {"--deadline", "0.001"},
       {},
       2,
       "",
       "kavren-report: cannot verify Result.txt: the deadline of 1 ms passed while the "
       "solution was verified\n",
       false},
  };
}

class Limits : public ::testing::TestWithParam<LimitCase> {};

TEST_P(Limits, EndCleanly) {
  const LimitCase& c = GetParam();
#ifdef KAVREN_SANITIZED
  for (const ResourceLimit& limit : c.limits) {
    // The sanitizers' runtime needs address space (shadow memory) and descriptors of its
    // own (to check an object's type it reads the process's memory map).
    if (limit.resource == RLIMIT_AS || limit.resource == RLIMIT_NOFILE) {
      GTEST_SKIP() << "the sanitizers' runtime under this limit";
    }
  }
#endif
  TempDir dir;
  if (c.files == Files::demo) {
    dir.write("Result.txt", demo_scenario().result_text());
    dir.write("KAVREN_Asteroids_Data.txt", demo_scenario().catalogue);
  } else {
    dir.write("Result.txt", c.files == Files::bench ? bench().result : bench().hostile);
    dir.write("KAVREN_Asteroids_Data.txt", bench().catalogue);
  }
  const RunResult run = run_case(c, dir);
  EXPECT_EQ(run.status, c.status);
  EXPECT_EQ(run.err, c.err);
  if (c.out == kVerdict) {
    LimitCase unlimited = c;
    unlimited.limits.clear();
    TempDir again;
    again.write("Result.txt", *dir.read("Result.txt"));
    again.write("KAVREN_Asteroids_Data.txt", *dir.read("KAVREN_Asteroids_Data.txt"));
    const RunResult expected = run_case(unlimited, again);
    ASSERT_EQ(expected.status, c.status);
    EXPECT_EQ(run.out, expected.out);
  } else {
    EXPECT_EQ(run.out, c.out);
  }
  EXPECT_EQ(run.score.has_value() || dir.read("out.json").has_value(), c.output_file);
}

INSTANTIATE_TEST_SUITE_P(, Limits, ::testing::ValuesIn(limit_cases()),
                         [](const ::testing::TestParamInfo<LimitCase>& info) {
                           return std::string(info.param.name);
                         });

// The API's limits: a byte limit met exactly passes, one byte over stops; a deadline of a
// millisecond ends the hostile file's verification with limit_reached.
TEST(ApiLimits, ByteLimitAndDeadline) {
  const Catalogue demo_catalogue = Catalogue::from_text(demo_scenario().catalogue);
  const std::string demo = demo_scenario().result_text();
  Options options;
  options.workers = 1;
  options.max_bytes = demo.size();
  const Report within = verify(demo_catalogue, demo, options);
  EXPECT_EQ(within.outcome, Outcome::verified);
  EXPECT_TRUE(within.accepted);
  options.max_bytes = demo.size() - 1;
  const Report over = verify(demo_catalogue, demo, options);
  EXPECT_EQ(over.outcome, Outcome::limit_reached);
  EXPECT_FALSE(over.accepted);
  EXPECT_EQ(over.checker_output, "");

  options.max_bytes = 0;
  options.mode = Mode::all;
  options.deadline = std::chrono::milliseconds(1);
  const Report hostile = verify(Catalogue::from_text(bench().catalogue), bench().hostile, options);
  EXPECT_EQ(hostile.outcome, Outcome::limit_reached);
  EXPECT_EQ(hostile.error, "the deadline of 1 ms passed while the solution was verified");
  EXPECT_TRUE(hostile.findings.empty());
}

}  // namespace
}  // namespace kavren::test
