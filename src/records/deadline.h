// The instant after which a verification gives up, honoured at the places where the work
// can stop cleanly: every few thousand lines of reading, between ships, between stages,
// between arcs and inside the integration loops.
#pragma once

#include <chrono>

namespace kavren {

using DeadlineClock = std::chrono::steady_clock;

// Thrown once a verification's deadline has passed.
struct DeadlineReached {};

// Null: no deadline.
inline void honour_deadline(const DeadlineClock::time_point* deadline) {
  if (deadline != nullptr && DeadlineClock::now() > *deadline) throw DeadlineReached{};
}

}  // namespace kavren
