#include "console/announce.h"

#include <iostream>

#include "console/termination.h"

namespace kavren {

bool announce(Findings& findings, bool ends_run) {
  if (!findings.any()) return true;
  const Finding& first = findings.findings().front();
  std::cout << first.message;
  std::cout.flush();
  if (ends_run) end_run(first.exit_status);
  return false;
}

}  // namespace kavren
