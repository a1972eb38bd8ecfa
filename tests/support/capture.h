// Runs a check in-process, capturing what it prints and how it ends the run.
#pragma once

#include <iostream>
#include <sstream>
#include <string>

#include "console/termination.h"

namespace kavren::test {

struct Outcome {
  std::string out;
  bool ended = false;  // the check ended the run
  int status = -1;     // the run's exit status when it did
};

template <class Check>
Outcome capture(Check&& check) {
  std::ostringstream buffer;
  struct Redirect {
    std::streambuf* saved;
    ~Redirect() { std::cout.rdbuf(saved); }
  } redirect{std::cout.rdbuf(buffer.rdbuf())};
  Outcome outcome;
  try {
    check();
  } catch (const kavren::Termination& end) {
    outcome.ended = true;
    outcome.status = end.status();
  }
  outcome.out = buffer.str();
  return outcome;
}

}  // namespace kavren::test
