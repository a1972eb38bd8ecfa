// Cases for the command line, the input files, the line grammar, the grouping of lines
// and the epochs.
#include "e2e/error_case.h"

namespace kavren::test {

std::vector<ErrorCase> input_error_cases() {
  std::vector<ErrorCase> cases;
  cases.push_back({"Error000_AnyArgument", "Error000", [](Scenario& s) {
                     s.args = {"Result.txt"};
                     return Expectation{
                         "Error000. The number of input parameters is incorrect.\n"
                         "The input is consisted with two files: the front one contains the "
                         "KAVREN_Asteroids_Data.txt data, and the behind one takes the "
                         "Result.txt.\n",
                         0, std::nullopt};
                   }});
  cases.push_back({"ErrorA00_NoCatalogue", "ErrorA00:", [](Scenario& s) {
                     s.write_catalogue = false;
                     return Expectation{"ErrorA00: The file of Asteroid Data cannot be found.\n",
                                        1, std::nullopt};
                   }});
  return cases;
}

}  // namespace kavren::test
