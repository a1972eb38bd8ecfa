// The whole run of the verifier: reads the catalogue and the solution from the working
// directory, runs every check in its fixed order and prints the verdict.
#pragma once

namespace kavren {

// Returns the process exit status.
int run_verifier(int argc);

}  // namespace kavren
