#include "console/termination.h"

#include <iostream>

namespace kavren {

void end_run(int status) {
  std::cout.flush();
  throw Termination(status);
}

}  // namespace kavren
