// A check that ends the whole run with an exit status throws a Termination; the caller
// that owns the process (or a test) catches it, so standard output is flushed and the
// checks stay callable in-process.
#pragma once

namespace kavren {

class Termination {
 public:
  explicit Termination(int status) : status_(status) {}
  int status() const { return status_; }

 private:
  int status_;
};

// Flushes standard output and throws Termination(status).
[[noreturn]] void end_run(int status);

}  // namespace kavren
