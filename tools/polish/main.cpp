// kavren-polish: changes the thrust numbers of every burning arc whose end state misses
// the state written at its end, so that the verifier's own integration lands on it, and
// writes the polished solution.
//
//   kavren-polish [SOLUTION] [--catalogue PATH] --out FILE [--json FILE] [--safety F]
//                 [--max-degrees D] [--threads N]
//
// Prints one line per failing arc and per finding left as it is, then the verdict of the
// polished file. Exit status: 0 when the polished file is accepted, 1 when findings remain
// (the file is still written), 2 for a usage or input/output error (one line on standard
// error, nothing written).
#include <sys/stat.h>

#include <CLI/CLI.hpp>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iostream>
#include <new>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "kavren/json.h"
#include "kavren/polish.h"
#include "kavren/verify.h"

namespace {

struct Failure : std::runtime_error {
  using std::runtime_error::runtime_error;
};

struct Settings {
  std::string solution = "Result.txt";
  std::string catalogue = "KAVREN_Asteroids_Data.txt";
  std::string out;
  std::string json;
  kavren::PolishOptions options;
};

std::string read_file(const std::string& name) {
  struct stat info {};
  if (stat(name.c_str(), &info) != 0)
    throw Failure("cannot read " + name + ": " + std::strerror(errno));
  if (S_ISDIR(info.st_mode)) throw Failure("cannot read " + name + ": it is a directory");
  std::ifstream in(name, std::ios::binary);
  if (!in) throw Failure("cannot read " + name + ": " + std::strerror(errno));
  std::string bytes;
  bytes.reserve(static_cast<std::size_t>(info.st_size));
  char buffer[1 << 16];
  while (in.read(buffer, sizeof buffer) || in.gcount() > 0) {
    bytes.append(buffer, static_cast<std::size_t>(in.gcount()));
  }
  if (in.bad()) throw Failure("cannot read " + name + ": read error");
  return bytes;
}

// The same file under two names (or the same name).
bool same_file(const std::string& a, const std::string& b) {
  if (a == b) return true;
  struct stat x {
  }, y{};
  return stat(a.c_str(), &x) == 0 && stat(b.c_str(), &y) == 0 && x.st_dev == y.st_dev &&
         x.st_ino == y.st_ino;
}

// Files are written whole or not at all: each to a temporary file beside it, renamed
// once every file is written.
struct Staged {
  std::string temporary, path;
};

Staged stage(const std::string& path, std::string_view bytes) {
  Staged staged{path + ".kavren-polish.tmp", path};
  std::ofstream out(staged.temporary, std::ios::binary | std::ios::trunc);
  if (!out) throw Failure("cannot write " + path + ": " + std::strerror(errno));
  out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  out.close();
  if (!out) {
    std::remove(staged.temporary.c_str());
    throw Failure("cannot write " + path + ": write error");
  }
  return staged;
}

void write_files(const std::vector<std::pair<std::string, std::string_view>>& files) {
  std::vector<Staged> staged;
  try {
    for (const auto& [path, bytes] : files) {
      if (path != "-") staged.push_back(stage(path, bytes));
    }
    for (std::size_t k = 0; k < staged.size(); ++k) {
      if (std::rename(staged[k].temporary.c_str(), staged[k].path.c_str()) != 0) {
        const std::string reason = std::strerror(errno);
        for (std::size_t j = 0; j < k; ++j) std::remove(staged[j].path.c_str());
        throw Failure("cannot write " + staged[k].path + ": " + reason);
      }
    }
  } catch (...) {
    for (const Staged& s : staged) std::remove(s.temporary.c_str());
    throw;
  }
  for (const auto& [path, bytes] : files) {
    if (path == "-") {
      std::cout << bytes;
      std::cout.flush();
    }
  }
}

std::string number(double x, const char* pattern = "%.4g") {
  char buffer[64];
  std::snprintf(buffer, sizeof buffer, pattern, x);
  return buffer;
}

std::string lines_text(const std::vector<long long>& lines) {
  std::string text;
  for (long long line : lines) text += (text.empty() ? "" : ",") + std::to_string(line);
  return text.empty() ? "-" : text;
}

std::string arc_line(const kavren::ArcPolish& a) {
  std::string codes;
  for (const std::string& c : a.codes) codes += (codes.empty() ? "" : " ") + c;
  std::string text = "ship " + std::to_string(a.ship) + ", arc ";
  text += a.first_line > 0 ? "lines " + std::to_string(a.first_line) + "-" +
                                 std::to_string(a.last_line) + " to line "
                           : "to line ";
  text += std::to_string(a.end_line) + " (" + codes + "): ";
  const auto errors = [](const double* e) {
    return number(e[0]) + " km, " + number(e[1] * 1000.0) + " m/s, " + number(e[2]) + " kg";
  };
  if (!a.polished) return text + "not polished, " + a.reason + "; misses by " + errors(a.before);
  return text + "polished, " + errors(a.before) + " -> " + errors(a.after) + "; " +
         std::to_string(a.changed_lines) + " lines, turn " + number(a.max_turn_degrees, "%.3g") +
         " deg, magnitude " + number(a.max_magnitude_change, "%.3g") + " N; " +
         std::to_string(a.iterations) + " iterations, " + std::to_string(a.integrations) +
         " integrations";
}

nlohmann::ordered_json to_json(const Settings& s, const kavren::PolishResult& r) {
  nlohmann::ordered_json j;
  j["solution"] = s.solution;
  j["out"] = s.out;
  j["accepted"] = r.report.accepted;
  j["safety"] = s.options.safety;
  j["max_degrees"] = s.options.max_degrees;
  const auto triple = [](const double* e) {
    return nlohmann::ordered_json{
        {"position_km", e[0]}, {"velocity_km_s", e[1]}, {"mass_kg", e[2]}};
  };
  j["arcs"] = nlohmann::ordered_json::array();
  for (const kavren::ArcPolish& a : r.arcs) {
    j["arcs"].push_back({{"ship", a.ship},
                         {"first_line", a.first_line},
                         {"last_line", a.last_line},
                         {"end_line", a.end_line},
                         {"codes", a.codes},
                         {"polished", a.polished},
                         {"reason", a.reason},
                         {"before", triple(a.before)},
                         {"after", triple(a.after)},
                         {"max_turn_degrees", a.max_turn_degrees},
                         {"max_magnitude_change_n", a.max_magnitude_change},
                         {"changed_lines", a.changed_lines},
                         {"iterations", a.iterations},
                         {"integrations", a.integrations}});
  }
  j["left"] = nlohmann::ordered_json::array();
  for (const kavren::LeftFinding& f : r.left) {
    j["left"].push_back(
        {{"code", f.code}, {"lines", f.lines}, {"ship", f.ship}, {"reason", f.reason}});
  }
  j["report"] = nlohmann::ordered_json::parse(kavren::report_to_json(r.report));
  return j;
}

int run(const Settings& s) {
  if (same_file(s.out, s.solution)) {
    throw Failure("--out names the solution " + s.solution + "; it is never overwritten");
  }
  if (!s.json.empty() && (same_file(s.json, s.solution) || s.json == s.out)) {
    throw Failure("--json names the solution or the polished file");
  }
  const std::string text = read_file(s.solution);
  struct stat info {};
  if (stat(s.catalogue.c_str(), &info) == 0 && S_ISDIR(info.st_mode)) {
    throw Failure("cannot read the catalogue " + s.catalogue + ": it is a directory");
  }
  kavren::Catalogue catalogue = [&] {
    try {
      return kavren::Catalogue::from_file(s.catalogue);
    } catch (const kavren::InputError& e) {
      throw Failure(e.what());
    }
  }();
  const kavren::PolishResult r = kavren::polish(catalogue, text, s.options);
  if (r.report.outcome != kavren::Outcome::verified) {
    throw Failure("cannot verify " + s.solution + ": " + r.report.error);
  }
  std::string json;
  if (!s.json.empty()) json = to_json(s, r).dump(2) + "\n";
  std::vector<std::pair<std::string, std::string_view>> files;
  files.emplace_back(s.out, r.text);
  if (!s.json.empty()) files.emplace_back(s.json, json);
  write_files(files);
  // Standard output holding the file or the JSON holds nothing else.
  if (s.out == "-" || s.json == "-") return r.report.accepted ? 0 : 1;
  for (const kavren::ArcPolish& a : r.arcs) std::cout << arc_line(a) << "\n";
  for (const kavren::LeftFinding& f : r.left) {
    std::cout << f.code << " on line " << lines_text(f.lines) << " (ship " << f.ship
              << "): left as it is, " << f.reason << "\n";
  }
  std::cout << "Verdict of " << s.out << ":\n" << r.report.checker_output;
  return r.report.accepted ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
  Settings settings;
  CLI::App app{
      "kavren-polish: turns the thrust of burning arcs that miss their end state "
      "so that the verifier's integration lands on it, and writes the polished "
      "solution"};
  app.set_version_flag("--version", std::string("kavren-polish ") + kavren::version());
  app.add_option("SOLUTION", settings.solution, "The solution file")->capture_default_str();
  app.add_option("--catalogue", settings.catalogue, "The asteroid catalogue")
      ->capture_default_str();
  app.add_option("--out", settings.out,
                 "Where the polished solution is written (- : standard "
                 "output); never the solution itself")
      ->required();
  app.add_option("--json", settings.json,
                 "The arcs, the findings left and the polished "
                 "file's report as JSON (- : standard output)");
  app.add_option("--safety", settings.options.safety,
                 "Largest end-state error of a polished arc, as a fraction of each limit")
      ->check(CLI::Range(1e-6, 1.0))
      ->capture_default_str();
  app.add_option("--max-degrees", settings.options.max_degrees,
                 "Largest turn of a thrust line, degrees")
      ->check(CLI::Range(1e-6, 90.0))
      ->capture_default_str();
  settings.options.threads = kavren::workers_from_text(std::getenv("KAVREN_THREADS"));
  app.add_option("--threads", settings.options.threads,
                 "Threads polishing and verifying (default: KAVREN_THREADS, else one per "
                 "hardware thread)")
      ->check(CLI::Range(1, kavren::kMaxWorkers));
  try {
    app.parse(argc, argv);
  } catch (const CLI::CallForHelp& e) {
    return app.exit(e);
  } catch (const CLI::CallForVersion& e) {
    return app.exit(e);
  } catch (const CLI::ParseError& e) {
    std::cerr << "kavren-polish: " << e.what() << " (see --help)\n";
    return 2;
  }
  if (settings.out == "-" && settings.json == "-") {
    std::cerr << "kavren-polish: --out and --json cannot both be standard output\n";
    return 2;
  }
  try {
    return run(settings);
  } catch (const Failure& e) {
    std::cerr << "kavren-polish: " << e.what() << "\n";
    return 2;
  } catch (const std::bad_alloc&) {
    std::cerr << "kavren-polish: out of memory while polishing " << settings.solution << "\n";
    return 2;
  }
}
