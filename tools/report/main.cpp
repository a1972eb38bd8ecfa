// kavren-report: verifies one or more solutions and shows every violated rule with its
// margin, the constraint table, warnings and a per-ship summary, as text for people,
// JSON for scripts and a self-contained HTML page with plots.
//
// Exit status: 0 when every solution is accepted, 1 when one is not, 2 for a usage or
// input/output error, a limit of --max-bytes or --deadline reached, or memory that could
// not be had (one line on standard error naming the file and the reason; no output file
// is written then).
#include <sys/stat.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <fstream>
#include <iostream>
#include <iterator>
#include <mutex>
#include <new>
#include <nlohmann/json.hpp>
#include <sstream>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "kavren/json.h"
#include "kavren/verify.h"
#include "report/render.h"

namespace {

using kavren::report::Checked;

// A usage or input/output error: the message names the file and the reason.
struct Failure : std::runtime_error {
  using std::runtime_error::runtime_error;
};

const char* const kDefaultSolution = "Result.txt";
const char* const kDefaultCatalogue = "KAVREN_Asteroids_Data.txt";

std::string shown(const std::string& name) {
  return name == "-" ? "standard input" : name;
}

// The file being read, verified or reported on, named when memory runs out.
std::string g_working_on = kDefaultSolution;

// The whole content of a solution file or of standard input.
std::string read_solution(const std::string& name) {
  if (name == "-") {
    std::ostringstream bytes;
    bytes << std::cin.rdbuf();
    if (std::cin.bad()) throw Failure("cannot read standard input");
    return bytes.str();
  }
  struct stat info {};
  if (stat(name.c_str(), &info) != 0) {
    throw Failure("cannot read " + name + ": " + std::strerror(errno));
  }
  if (S_ISDIR(info.st_mode)) throw Failure("cannot read " + name + ": it is a directory");
  std::ifstream in(name, std::ios::binary);
  if (!in) throw Failure("cannot read " + name + ": " + std::strerror(errno));
  std::string bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  if (in.bad()) throw Failure("cannot read " + name + ": read error");
  return bytes;
}

kavren::Catalogue read_catalogue(const std::string& path) {
  struct stat info {};
  if (stat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode)) {
    throw Failure("cannot read the catalogue " + path + ": it is a directory");
  }
  try {
    return kavren::Catalogue::from_file(path);
  } catch (const kavren::InputError& e) {
    throw Failure(e.what());
  }
}

// Arcs done over all solutions, drawn on standard error as one line rewritten in place.
class Progress {
 public:
  explicit Progress(bool on, std::size_t files) : on_(on), done_(files), total_(files) {}

  void update(std::size_t file, std::size_t done, std::size_t total) {
    if (!on_) return;
    std::lock_guard<std::mutex> lock(mutex_);
    done_[file] = done;
    total_[file] = total;
    const auto now = std::chrono::steady_clock::now();
    if (done != total && now - last_ < std::chrono::milliseconds(100)) return;
    last_ = now;
    std::size_t d = 0, t = 0;
    for (std::size_t k = 0; k < done_.size(); ++k) {
      d += done_[k];
      t += total_[k];
    }
    const int width = 30;
    const int filled = t ? static_cast<int>(width * d / t) : 0;
    std::string bar(static_cast<std::size_t>(filled), '#');
    bar.resize(width, '.');
    std::fprintf(stderr, "\r  integrating arcs [%s] %zu/%zu", bar.c_str(), d, t);
    std::fflush(stderr);
    drawn_ = true;
  }

  void finish() {
    if (!on_ || !drawn_) return;
    std::fprintf(stderr, "\r\033[K");
    std::fflush(stderr);
  }

 private:
  bool on_;
  bool drawn_ = false;
  std::mutex mutex_;
  std::vector<std::size_t> done_, total_;
  std::chrono::steady_clock::time_point last_{};
};

void write_output(const std::string& path, const std::string& bytes) {
  if (path == "-") {
    std::cout << bytes;
    std::cout.flush();
    return;
  }
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  if (!out) throw Failure("cannot write " + path + ": " + std::strerror(errno));
  out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  out.close();
  if (!out) throw Failure("cannot write " + path + ": write error");
}

// Output files must be writable before any work is done, so that a mistyped folder is
// reported at once and nothing is left half written.
void check_writable(const std::string& path) {
  if (path.empty() || path == "-") return;
  struct stat info {};
  if (stat(path.c_str(), &info) == 0) {
    if (S_ISDIR(info.st_mode)) throw Failure("cannot write " + path + ": it is a directory");
    if (access(path.c_str(), W_OK) != 0) {
      throw Failure("cannot write " + path + ": " + std::strerror(errno));
    }
    return;
  }
  const std::size_t slash = path.find_last_of('/');
  const std::string folder = slash == std::string::npos ? "." : path.substr(0, slash + 1);
  if (access(folder.c_str(), W_OK) != 0) {
    throw Failure("cannot write " + path + ": " + std::strerror(errno));
  }
}

struct Settings {
  std::vector<std::string> solutions;
  std::string catalogue = kDefaultCatalogue;
  std::string json_path;
  std::string html_path;
  std::string mode = "all";
  std::string colour = "auto";
  int threads = 0;
  std::size_t max_bytes = 0;  // 0: no limit
  double deadline = 0.0;      // seconds; 0: none
};

int run(const Settings& settings) {
  std::vector<std::string> names = settings.solutions;
  if (names.empty()) names.push_back(kDefaultSolution);
  if (std::count(names.begin(), names.end(), "-") > 1) {
    throw Failure("standard input can be read only once");
  }
  if (settings.json_path == "-" && settings.html_path == "-") {
    throw Failure("--json and --html cannot both write to standard output");
  }
  check_writable(settings.json_path);
  check_writable(settings.html_path);

  // Every input is read before any work: an unreadable one ends the run at once.
  std::vector<Checked> checked(names.size());
  for (std::size_t k = 0; k < names.size(); ++k) {
    g_working_on = shown(names[k]);
    checked[k].name = names[k];
    checked[k].text = read_solution(names[k]);
  }
  g_working_on = shown(names[0]);
  const kavren::Catalogue catalogue = read_catalogue(settings.catalogue);

  const unsigned budget = static_cast<unsigned>(std::max(1, settings.threads));
  const unsigned parallel_files = std::min<unsigned>(budget, static_cast<unsigned>(checked.size()));
  const int workers_per_file = static_cast<int>(std::max(1u, budget / parallel_files));

  Progress progress(isatty(STDERR_FILENO) != 0, checked.size());
  std::vector<std::exception_ptr> failures(checked.size());
  std::atomic<std::size_t> next{0};
  auto worker = [&] {
    for (std::size_t k = next++; k < checked.size(); k = next++) {
      kavren::Options options;
      options.mode = settings.mode == "first" ? kavren::Mode::first : kavren::Mode::all;
      options.workers = workers_per_file;
      options.trajectories = !settings.html_path.empty();
      options.max_bytes = settings.max_bytes;
      if (settings.deadline > 0) {
        options.deadline =
            std::chrono::milliseconds(std::max(1LL, std::llround(settings.deadline * 1000.0)));
      }
      options.progress = [&progress, k](std::size_t done, std::size_t total) {
        progress.update(k, done, total);
      };
      const auto start = std::chrono::steady_clock::now();
      try {
        checked[k].report = kavren::verify(catalogue, checked[k].text, options);
      } catch (const std::bad_alloc&) {
        checked[k].report.outcome = kavren::Outcome::out_of_memory;
        checked[k].report.error = "out of memory while verifying the solution";
      } catch (...) {
        failures[k] = std::current_exception();
      }
      checked[k].seconds =
          std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    }
  };
  std::vector<std::thread> pool;
  for (unsigned t = 1; t < parallel_files; ++t) pool.emplace_back(worker);
  worker();
  for (std::thread& t : pool) t.join();
  progress.finish();
  for (std::size_t k = 0; k < checked.size(); ++k) {
    if (!failures[k]) continue;
    try {
      std::rethrow_exception(failures[k]);
    } catch (const std::exception& e) {
      throw Failure("cannot verify " + shown(checked[k].name) + ": " + e.what());
    } catch (...) {
      throw Failure("cannot verify " + shown(checked[k].name));
    }
  }
  // A report cut short by a limit or by memory is no verdict: nothing is written.
  for (const Checked& c : checked) {
    if (c.report.outcome == kavren::Outcome::out_of_memory) {
      g_working_on = shown(c.name);
      throw std::bad_alloc();
    }
    if (c.report.outcome != kavren::Outcome::verified) {
      throw Failure("cannot verify " + shown(c.name) + ": " + c.report.error);
    }
  }
  if (checked.size() > 1)
    g_working_on = "the reports of " + std::to_string(checked.size()) + " solutions";

  // The outputs are built whole, then written.
  if (!settings.json_path.empty()) {
    std::string json;
    if (checked.size() == 1 && settings.solutions.size() <= 1) {
      json = kavren::report_to_json(checked[0].report, 2) + "\n";
    } else {
      nlohmann::ordered_json array = nlohmann::ordered_json::array();
      for (const Checked& c : checked) {
        nlohmann::ordered_json entry = nlohmann::ordered_json::object();
        entry["file"] = c.name;
        entry["report"] = nlohmann::ordered_json::parse(kavren::report_to_json(c.report));
        array.push_back(std::move(entry));
      }
      json = array.dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace) + "\n";
    }
    write_output(settings.json_path, json);
  }
  if (!settings.html_path.empty()) {
    write_output(settings.html_path, kavren::report::render_html(checked));
  }
  if (settings.json_path != "-" && settings.html_path != "-") {
    const char* no_colour = std::getenv("NO_COLOR");
    kavren::report::TextStyle style;
    style.colour =
        settings.colour == "always" || (settings.colour == "auto" && isatty(STDOUT_FILENO) != 0 &&
                                        (no_colour == nullptr || *no_colour == '\0'));
    std::string text;
    for (std::size_t k = 0; k < checked.size(); ++k) {
      if (checked.size() > 1) {
        text += (k ? "\n" : "") + std::string(style.colour ? "\033[1m" : "") +
                "== " + shown(checked[k].name) + " ==" + (style.colour ? "\033[0m" : "") + "\n";
      }
      text += kavren::report::render_text(checked[k], style);
    }
    if (checked.size() > 1) text += "\n" + kavren::report::render_table(checked, style);
    std::cout << text;
    std::cout.flush();
  }
  const bool all_accepted = std::all_of(checked.begin(), checked.end(), [](const Checked& c) {
    return c.report.accepted && c.report.outcome == kavren::Outcome::verified;
  });
  return all_accepted ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
  CLI::App app{
      "Verifies KAVREN solutions and reports every violated rule with its margin, the "
      "constraint table, warnings and a per-ship summary.\n"
      "Without SOLUTION it reads Result.txt and KAVREN_Asteroids_Data.txt from the working "
      "directory, like kavren-check.",
      "kavren-report"};
  app.set_version_flag("--version", std::string("kavren-report ") + kavren::version());
  Settings settings;
  settings.threads = kavren::workers_from_text(std::getenv("KAVREN_THREADS"));
  app.add_option("SOLUTION", settings.solutions,
                 "Solution files (Result.txt when none; - reads standard input)");
  app.add_option("--catalogue", settings.catalogue, "The asteroid catalogue")
      ->capture_default_str();
  app.add_option("--json", settings.json_path,
                 "Write the report as JSON to FILE (- for standard output)")
      ->type_name("FILE");
  app.add_option("--html", settings.html_path,
                 "Write a self-contained HTML page with plots to FILE (- for standard output)")
      ->type_name("FILE");
  app.add_option("--mode", settings.mode,
                 "all: every rule of every event, arc and ship; first: stop where "
                 "kavren-check stops")
      ->check(CLI::IsMember({"all", "first"}))
      ->capture_default_str();
  app.add_option("--threads", settings.threads,
                 "Threads verifying arcs and files (default: KAVREN_THREADS, else one per "
                 "hardware thread)")
      ->check(CLI::Range(1, kavren::kMaxWorkers));
  app.add_option("--max-bytes", settings.max_bytes,
                 "Refuse a solution of more than N bytes (exit status 2); for files from "
                 "untrusted sources")
      ->type_name("N")
      ->check(CLI::PositiveNumber);
  app.add_option("--deadline", settings.deadline,
                 "Stop verifying a solution after SECONDS (exit status 2); for files from "
                 "untrusted sources")
      ->type_name("SECONDS")
      ->check(CLI::Range(0.001, 1e9));
  app.add_option("--colour,--color", settings.colour,
                 "Colour the terminal report: auto (a terminal and NO_COLOR unset), always, "
                 "never")
      ->check(CLI::IsMember({"auto", "always", "never"}))
      ->capture_default_str();
  try {
    app.parse(argc, argv);
  } catch (const CLI::CallForHelp& e) {
    return app.exit(e);
  } catch (const CLI::CallForAllHelp& e) {
    return app.exit(e);
  } catch (const CLI::CallForVersion& e) {
    return app.exit(e);
  } catch (const CLI::ParseError& e) {
    std::cerr << "kavren-report: " << e.what() << " (see --help)\n";
    return 2;
  }
  try {
    return run(settings);
  } catch (const Failure& e) {
    std::cerr << "kavren-report: " << e.what() << "\n";
    return 2;
  } catch (const std::bad_alloc&) {
    std::cerr << "kavren-report: out of memory while verifying " << g_working_on << "\n";
    return 2;
  }
}
