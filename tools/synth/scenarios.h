// The scenarios the synthesiser writes: each fills a Builder (and its Catalogue).
#pragma once

#include <cstdint>
#include <string>

#include "synth/builder.h"

namespace synth {

struct Scenario {
  std::string name;
  std::string description;
};

// Resonant mining pairs (the first turning at its last Earth drops and meeting the Earth
// once more) plus a thrusting deploy-only ship.
Scenario build_demo(Builder& builder, std::uint64_t seed);
// Variants for the end-to-end suite, index 0 .. suite_size() - 1.
int suite_size();
Scenario build_suite_case(Builder& builder, int index);
// A large case: `ships` ships whose arcs are packed with one-day thrust-table lines. At full
// precision every arc line's epoch and thrust need 17 significant digits, as an
// optimiser prints doubles; otherwise they are short decimals and zero thrust. `tails`
// pairs (spread over the fleet) end their first ship with a leg that really thrusts.
Scenario build_bench(Builder& builder, int ships, std::uint64_t seed, bool full_precision = true,
                     int tails = 0);

}  // namespace synth
