// Cases for the launch, flyby and rendezvous checks.
#include "e2e/error_case.h"

namespace kavren::test {

std::vector<ErrorCase> event_error_cases() { return {}; }

}  // namespace kavren::test
