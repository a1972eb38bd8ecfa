#include "records/termination.h"

#include <iostream>

#include "records/output.h"

namespace kavren {

void end_run(int status) {
  out().flush();
  std::cout.flush();
  throw Termination(status);
}

}  // namespace kavren
