// Cases for the event checks, the mining ledger, the burning arcs, the ship count and
// the score file.
#include "e2e/error_case.h"

#include <sys/stat.h>

namespace kavren::test {

std::vector<ErrorCase> physics_error_cases() {
  std::vector<ErrorCase> cases;
  cases.push_back({"ScoreFile_IsADirectory", kScoreFileError, [](Scenario& s) {
                     s.prepare = [](const std::string& folder) {
                       mkdir((folder + "/ScoreData.txt").c_str(), 0700);
                     };
                     return Expectation{std::string(kScoreFileError) + " 'ScoreData.txt'.\n", 0,
                                        std::nullopt};
                   }});
  return cases;
}

}  // namespace kavren::test
