// Checks that end the whole run (the reference behaviour calls exit with a status)
// throw a Termination instead; the driver catches it, flushes standard output and
// returns the carried status, so the observable bytes and status are unchanged and
// the checks stay testable in-process.
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
