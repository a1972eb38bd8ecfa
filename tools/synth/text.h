// Numbers written with round-trip precision and read back exactly as the verifier reads
// them, so every value the builder uses afterwards is the value the check will see.
#pragma once

#include <string>

namespace synth {

std::string fmt(double x);  // "%.17g"
double reparse(double x);   // strtod(fmt(x))

// A hostile form of a solution for deadline tests and benchmarks: every event that ends
// a burning arc with lines arrives at MJD 99999, long after the mission. A run that stops
// at its first finding stops there (Error002); one that reports every finding
// integrates each such arc's last coast over 95 years, up to its evaluation budget: many
// times the work of the valid file.
std::string late_arrivals(const std::string& result);

}  // namespace synth
