// The printing form of the checks in console/: each runs its check on a stopping
// collector and prints the collector's first finding on standard output.
#pragma once

#include "records/findings.h"

namespace kavren {

// Prints the first finding, if any, and returns whether there was none. With
// `ends_run`, a finding ends the run with its exit status (Termination).
bool announce(Findings& findings, bool ends_run = false);

}  // namespace kavren
