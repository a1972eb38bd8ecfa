// The whole run of the verifier: reads the catalogue and the solution from the working
// directory, runs every check in its fixed order and prints the verdict.
#pragma once

namespace kavren {

// Returns the process exit status.
int run_verifier(int argc);

// Every stage after the catalogue: reads and checks the solution, writes the score file
// and prints the summary. The catalogue table must be loaded. Checks that end the run
// throw Termination. Returns 0.
int check_solution(const char* solution_file, bool release_catalogue);

}  // namespace kavren
