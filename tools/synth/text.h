// Numbers written with round-trip precision and read back exactly as the verifier reads
// them, so every value the builder uses afterwards is the value the check will see.
#pragma once

#include <string>

namespace synth {

std::string fmt(double x);  // "%.17g"
double reparse(double x);   // strtod(fmt(x))

// A hostile form of a solution for deadline tests and benchmarks: every launch's second
// epoch NaN, so that the coast opening each ship's first burning arc runs to its
// evaluation budget (many times the work of the valid file).
std::string nan_launch_epochs(const std::string& result);

}  // namespace synth
