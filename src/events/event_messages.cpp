#include "events/event_messages.h"

#include <iostream>

namespace kavren::events {

void print_line_error(const char* prefix, int line_index, const char* suffix) {
  std::cout << prefix << static_cast<long long>(line_index) + 1 << suffix << std::endl;
}

}  // namespace kavren::events
