// A program built against the installed package: verifies the solution given on the
// command line against the catalogue, in memory, and prints the verdict.
#include <kavren/verify.h>

#include <fstream>
#include <iostream>
#include <sstream>

int main(int argc, char** argv) {
  if (argc != 3) return 2;
  std::ifstream in(argv[2], std::ios::binary);
  std::stringstream text;
  text << in.rdbuf();
  const kavren::Catalogue catalogue = kavren::Catalogue::from_file(argv[1]);
  const kavren::Report report = kavren::verify(catalogue, text.str());
  std::cout << report.accepted << " " << report.summary.ships << "\n" << report.checker_output;
  return report.accepted ? 0 : 1;
}
