// kavren-synth: writes valid scenarios (catalogue, solution, expected verdict) for the
// verifier's end-to-end tests, the demo and the benchmarks.
//   kavren-synth demo <dir> [--seed N]
//   kavren-synth suite <dir>
//   kavren-synth bench <dir> [--ships N] [--seed N] [--short-numbers]
//                      [--separators tab|blank|blanks|mixed]
//     (numbers at full precision unless --short-numbers; fields and catalogue columns
//     separated as --separators says, tabs by default)
//     (also Result-late-arrivals.txt: the same solution with every event that ends a
//     burning arc with lines at MJD 99999)
//   kavren-synth nearmiss <dir> [--ships N] [--seed N] [--arcs K]
//     (the bench's resonant pairs, up to five of them ending with a thrusting leg, as
//     Result-valid.txt; Result.txt the same with the thrust of K arcs (1 to 3, default
//     1 + seed % 3) in different ships turned so that each misses its end state by 1 to
//     20 times the position limit; misses.txt lists them)
//   kavren-synth selfcheck   (checks of its own numerics; status 1 on a failure)
#include <sys/stat.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <fstream>
#include <iostream>
#include <string>

#include "synth/builder.h"
#include "synth/catalogue.h"
#include "synth/nearmiss.h"
#include "synth/scenarios.h"
#include "synth/selfcheck.h"
#include "synth/separators.h"
#include "synth/text.h"

namespace {

void write_file(const std::string& path, const std::string& bytes) {
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  if (!out) throw std::runtime_error("cannot write " + path);
}

void make_dir(const std::string& path) {
  if (mkdir(path.c_str(), 0755) != 0 && errno != EEXIST) {
    throw std::runtime_error("cannot create " + path);
  }
}

// Returns the solution's text, tab separated; the files are written in `form`.
template <typename Build>
std::string write_scenario(const std::string& dir, std::uint64_t seed, Build build,
                           synth::Separators form = synth::Separators::tab) {
  make_dir(dir);
  synth::Catalogue catalogue(seed);
  synth::Builder builder(catalogue);
  const synth::Scenario scenario = build(builder);
  write_file(dir + "/KAVREN_Asteroids_Data.txt", synth::reseparate(catalogue.text(), form, seed));
  write_file(dir + "/Result.txt", synth::reseparate(builder.result_text(), form, seed));
  write_file(dir + "/expected_stdout.txt", builder.expected_stdout());
  write_file(dir + "/expected_ScoreData.txt", builder.expected_score());
  std::string manifest =
      "scenario: " + scenario.name + "\n" + "description: " + scenario.description + "\n" +
      "seed: " + std::to_string(seed) + "\n" + "ships: " + std::to_string(builder.num_ships()) +
      "\n" + "lines: " + std::to_string(builder.num_lines()) + "\n" +
      "planted asteroids: " + std::to_string(catalogue.planted()) + "\n" + "expected stdout:\n" +
      builder.expected_stdout();
  write_file(dir + "/manifest.txt", manifest);
  std::cout << dir << ": " << scenario.name << ", " << builder.num_ships() << " ships, "
            << builder.num_lines() << " lines\n";
  return builder.result_text();
}

long option(int argc, char** argv, const std::string& name, long fallback) {
  for (int k = 3; k + 1 < argc; ++k) {
    if (argv[k] == name) return std::strtol(argv[k + 1], nullptr, 10);
  }
  return fallback;
}

std::string text_option(int argc, char** argv, const std::string& name,
                        const std::string& fallback) {
  for (int k = 3; k + 1 < argc; ++k) {
    if (argv[k] == name) return argv[k + 1];
  }
  return fallback;
}

bool flag(int argc, char** argv, const std::string& name) {
  for (int k = 3; k < argc; ++k) {
    if (argv[k] == name) return true;
  }
  return false;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc == 2 && std::string(argv[1]) == "selfcheck") {
    return synth::self_check(std::cout) ? 0 : 1;
  }
  if (argc < 3) {
    std::cerr << "usage: kavren-synth demo|suite|bench|nearmiss <dir> [--seed N] [--ships N] "
                 "[--short-numbers] [--arcs K]\n"
              << "       [--separators tab|blank|blanks|mixed]\n"
              << "       kavren-synth selfcheck\n";
    return 2;
  }
  const std::string command = argv[1];
  const std::string dir = argv[2];
  const auto seed = static_cast<std::uint64_t>(option(argc, argv, "--seed", 1));
  try {
    if (command == "demo") {
      write_scenario(dir, seed, [&](synth::Builder& b) { return synth::build_demo(b, seed); });
    } else if (command == "suite") {
      make_dir(dir);
      for (int k = 0; k < synth::suite_size(); ++k) {
        write_scenario(dir + "/case" + std::to_string(k), 100 + k,
                       [&](synth::Builder& b) { return synth::build_suite_case(b, k); });
      }
    } else if (command == "bench") {
      const int ships = static_cast<int>(option(argc, argv, "--ships", 100));
      if (ships < 2 || ships > 100 || ships % 2 != 0) {
        throw std::runtime_error("--ships must be an even number from 2 to 100");
      }
      const bool full = !flag(argc, argv, "--short-numbers");
      synth::Separators form = synth::Separators::tab;
      if (!synth::separators_from_text(text_option(argc, argv, "--separators", "tab"), form)) {
        throw std::runtime_error("--separators must be tab, blank, blanks or mixed");
      }
      const std::string result = write_scenario(
          dir, seed, [&](synth::Builder& b) { return synth::build_bench(b, ships, seed, full); },
          form);
      write_file(dir + "/Result-late-arrivals.txt",
                 synth::reseparate(synth::late_arrivals(result), form, seed));
    } else if (command == "nearmiss") {
      const int ships = static_cast<int>(option(argc, argv, "--ships", 10));
      if (ships < 2 || ships > 100 || ships % 2 != 0) {
        throw std::runtime_error("--ships must be an even number from 2 to 100");
      }
      const int arcs =
          static_cast<int>(option(argc, argv, "--arcs", 1 + static_cast<long>(seed % 3)));
      const std::string valid = write_scenario(dir, seed, [&](synth::Builder& b) {
        return synth::build_bench(b, ships, seed, true, 5);
      });
      std::vector<synth::PlantedMiss> planted;
      const std::string missed = synth::near_miss(valid, seed, arcs, planted);
      write_file(dir + "/Result-valid.txt", valid);
      write_file(dir + "/Result.txt", missed);
      std::string list = "ship\tend_line\tdegrees\tdrift_degrees\tscale\tmiss_km\n";
      for (const synth::PlantedMiss& m : planted) {
        list += std::to_string(m.ship) + "\t" + std::to_string(m.end_line) + "\t" +
                synth::fmt(m.degrees) + "\t" + synth::fmt(m.drift_degrees) + "\t" +
                synth::fmt(m.scale) + "\t" + synth::fmt(m.miss_km) + "\n";
      }
      write_file(dir + "/misses.txt", list);
    } else {
      std::cerr << "unknown command " << command << "\n";
      return 2;
    }
  } catch (const std::exception& e) {
    std::cerr << "kavren-synth: " << e.what() << "\n";
    return 1;
  }
  return 0;
}
