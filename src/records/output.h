// The stream that check messages are written to: standard output, unless the current
// thread has redirected it (arcs verified on worker threads collect their message and
// the driver prints only the first failure in file order).
#pragma once

#include <ostream>

namespace kavren {

std::ostream& out();

// Redirects out() of the calling thread to `target` for the lifetime of the object.
class ScopedOutput {
 public:
  explicit ScopedOutput(std::ostream& target);
  ~ScopedOutput();
  ScopedOutput(const ScopedOutput&) = delete;
  ScopedOutput& operator=(const ScopedOutput&) = delete;

 private:
  std::ostream* previous_;
};

}  // namespace kavren
