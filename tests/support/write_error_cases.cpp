// Writes the end-to-end error cases as files, for the tests of other languages:
//   kavren_error_cases <folder>
// <folder>/KAVREN_Asteroids_Data.txt is the demo's catalogue; each case is a subfolder
// named after it holding what the case leaves in kavren-check's folder: Result.txt (or
// none, or what its preparation puts there), its own catalogue when it changes the
// demo's, and an empty file "no-catalogue" when it has none. Cases that give kavren-check
// arguments concern its command line only and are left out.
#include <sys/stat.h>

#include <fstream>
#include <iostream>
#include <stdexcept>
#include <string>

#include "support/error_case.h"

namespace {

void write(const std::string& path, const std::string& bytes) {
  std::ofstream out(path, std::ios::binary);
  out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  if (!out) throw std::runtime_error("cannot write " + path);
}

}  // namespace

int main(int argc, char** argv) {
  using namespace kavren::test;
  if (argc != 2) {
    std::cerr << "usage: kavren_error_cases <folder>\n";
    return 2;
  }
  const std::string root = argv[1];
  mkdir(root.c_str(), 0755);
  const Scenario& demo = demo_scenario();
  write(root + "/KAVREN_Asteroids_Data.txt", demo.catalogue);
  int written = 0;
  for (const ErrorCase& c : all_error_cases()) {
    Scenario s = demo;
    c.make(s);
    if (!s.args.empty()) continue;
    const std::string folder = root + "/" + c.name;
    if (mkdir(folder.c_str(), 0755) != 0) throw std::runtime_error("cannot make " + folder);
    if (s.write_result) write(folder + "/Result.txt", s.result_text());
    if (!s.write_catalogue) {
      write(folder + "/no-catalogue", "");
    } else if (s.catalogue != demo.catalogue) {
      write(folder + "/KAVREN_Asteroids_Data.txt", s.catalogue);
    }
    if (s.prepare) s.prepare(folder);
    ++written;
  }
  std::cout << written << " cases\n";
  return 0;
}
