#include "records/output.h"

#include <iostream>

namespace kavren {
namespace {
thread_local std::ostream* current = nullptr;
}  // namespace

std::ostream& out() { return current != nullptr ? *current : std::cout; }

ScopedOutput::ScopedOutput(std::ostream& target) : previous_(current) { current = &target; }

ScopedOutput::~ScopedOutput() { current = previous_; }

}  // namespace kavren
