// kavren-check: reads the catalogue and the solution from the working directory,
// verifies the solution and prints the verdict, writing the score file on success.
#pragma once

namespace kavren {

// The whole run; returns the process exit status.
int run_checker(int argc);

}  // namespace kavren
