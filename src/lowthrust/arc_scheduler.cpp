#include "lowthrust/arc_scheduler.h"

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <limits>
#include <sstream>
#include <string>
#include <system_error>
#include <thread>

#include "lowthrust/arc_checks.h"
#include "lowthrust/arc_propagation.h"
#include "lowthrust/dynamics.h"
#include "records/output.h"
#include "records/termination.h"

namespace kavren {
namespace {

std::atomic<std::uint64_t> g_stage_evaluations{0};

// What one arc's check ended with, when it ended the run.
struct ArcFailure {
  int status = 0;
  std::string message;
  std::exception_ptr other;  // anything but a termination (e.g. out of memory)
};

}  // namespace

void check_arc(const BurningArc& arc) {
  BurningArc copy = arc;
  int count = 0;
  std::vector<int> starts, ends;
  Test_LowThrustData(copy, count, starts, ends);
  Test_LowThrust_RKF78(copy, count, starts, ends);
}

int arc_worker_count() {
  if (const char* text = std::getenv("KAVREN_THREADS")) {
    char* end = nullptr;
    const long n = std::strtol(text, &end, 10);
    if (end != text && *end == '\0' && n > 0) return static_cast<int>(std::min(n, 256L));
  }
  const unsigned hardware = std::thread::hardware_concurrency();
  return hardware == 0 ? 1 : static_cast<int>(std::min(hardware, 256u));
}

std::uint64_t last_arc_stage_evaluations() { return g_stage_evaluations.load(); }

}  // namespace kavren

bool CheckBuringArc(const std::vector<ShipClass>& ships) {
  using kavren::ArcFailure;
  std::vector<const BurningArc*> arcs;
  for (const ShipClass& ship : ships) {
    for (const BurningArc& arc : ship.burning_arcs) arcs.push_back(&arc);
  }
  const std::size_t n = arcs.size();
  const int workers =
      static_cast<int>(std::min<std::size_t>(kavren::arc_worker_count(), std::max<std::size_t>(n, 1)));
  kavren::g_stage_evaluations = 0;
  if (workers <= 1) {
    const std::uint64_t before = kavren::derivative_evaluations();
    for (const BurningArc* arc : arcs) kavren::check_arc(*arc);
    kavren::g_stage_evaluations = kavren::derivative_evaluations() - before;
    return true;
  }

  // Arcs are handed out in file order; once an arc failed, arcs after it are skipped,
  // arcs before it still run, since one of them may fail first.
  constexpr std::size_t kNone = std::numeric_limits<std::size_t>::max();
  std::vector<ArcFailure> failures(n);
  std::atomic<std::size_t> next{0};
  std::atomic<std::size_t> first_failed{kNone};
  auto work = [&] {
    const std::uint64_t before = kavren::derivative_evaluations();
    for (;;) {
      const std::size_t i = next.fetch_add(1);
      if (i >= n || i > first_failed.load()) break;
      std::ostringstream message;
      bool failed = false;
      {
        kavren::ScopedOutput redirect(message);
        try {
          kavren::check_arc(*arcs[i]);
        } catch (const kavren::Termination& end) {
          failures[i].status = end.status();
          failed = true;
        } catch (...) {
          failures[i].other = std::current_exception();
          failed = true;
        }
      }
      if (failed) {
        failures[i].message = message.str();
        std::size_t seen = first_failed.load();
        while (i < seen && !first_failed.compare_exchange_weak(seen, i)) {
        }
      }
    }
    kavren::g_stage_evaluations += kavren::derivative_evaluations() - before;
  };

  std::vector<std::thread> threads;
  for (int k = 1; k < workers; ++k) {
    try {
      threads.emplace_back(work);
    } catch (const std::system_error&) {
      break;  // no more threads: the ones started (or this one alone) do the work
    }
  }
  work();
  for (std::thread& thread : threads) thread.join();

  const std::size_t failed = first_failed.load();
  if (failed != kNone) {
    if (failures[failed].other) std::rethrow_exception(failures[failed].other);
    std::cout << failures[failed].message;
    std::cout.flush();
    kavren::end_run(failures[failed].status);
  }
  return true;
}
