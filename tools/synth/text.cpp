#include "synth/text.h"

#include <cstdio>
#include <cstdlib>

namespace synth {

std::string fmt(double x) {
  char buffer[40];
  std::snprintf(buffer, sizeof buffer, "%.17g", x);
  return buffer;
}

double reparse(double x) { return std::strtod(fmt(x).c_str(), nullptr); }

}  // namespace synth
