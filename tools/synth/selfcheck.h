// Checks of the synthesiser's own numerics against independent references, run by
// `kavren-synth selfcheck`: one summary line per check on `out`, true when all pass.
#pragma once

#include <ostream>

namespace synth {

bool self_check(std::ostream& out);

}  // namespace synth
