// A program built against the installed package: verifies the solution given on the
// command line against the catalogue, in memory, and prints the verdict; a session gives
// the same verdict twice, the second time from what it kept.
#include <kavren/session.h>
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
  kavren::Session session(catalogue);
  for (int round = 0; round < 2; ++round) {
    const kavren::Report again = session.verify(text.str());
    if (again.checker_output != report.checker_output) return 3;
    if (round == 1 && again.statistics.ships_verified != 0) return 4;
  }
  std::cout << report.accepted << " " << report.summary.ships << "\n" << report.checker_output;
  return report.accepted ? 0 : 1;
}
