// Numbers written with round-trip precision and read back exactly as the verifier reads
// them, so every value the builder uses afterwards is the value the check will see.
#pragma once

#include <string>

namespace synth {

std::string fmt(double x);  // "%.17g"
double reparse(double x);   // strtod(fmt(x))

}  // namespace synth
