#include "lowthrust/arc_checks.h"

#include <algorithm>
#include <cmath>
#include <iostream>

#include "lowthrust/arc_propagation.h"
#include "records/output.h"
#include "records/termination.h"

namespace {

constexpr double kThrustLimitTested = 0.60000001;  // N, the 0.6 N cap with 1e-8 N allowance
constexpr double kThrustLimitPrinted = 0.6;
constexpr double kZero = 1e-08;  // days for epochs, N for thrusts
constexpr double kThrustStep = 1.0;  // day between thrust lines

// Line numbers are printed 1-based; they are formed in 64 bits so that no file index can
// overflow on the way.
[[noreturn]] void error401(long long index, double magnitude) {
  kavren::out() << "Error401. Thrust Magnitude Error on the line " << index + 1
            << ": The thrust magnitude is " << magnitude << " N, greater than the maximum "
            << kThrustLimitPrinted << "N." << std::endl;
  kavren::end_run(0);
}

[[noreturn]] void format_error(const char* code, long long index, const char* what) {
  kavren::out() << code << ". File Format Error on the line " << index + 1 << ": " << what
            << std::endl;
  kavren::end_run(0);
}

[[noreturn]] void epoch_error(const char* code, long long index, const char* what) {
  kavren::out() << code << ". Thrust Epoch Error between line " << index + 1 << " and line "
            << index + 2 << ": The time interval is " << what << std::endl;
  kavren::end_run(0);
}

// The arc's lines as the walk sees them: file line index -> epoch and thrust magnitude.
class ArcLines {
 public:
  explicit ArcLines(const BurningArc& arc) : arc_(arc) {
    // The walk stops at the last line actually stored, should the vectors hold fewer
    // lines than first_line..last_line spans (the reader never builds such an arc).
    const long long stored =
        static_cast<long long>(std::min(arc.lines.size(), arc.values.size()));
    last_ = std::min<long long>(arc.last_line, arc.first_line + stored - 1);
  }
  long long first() const { return arc_.first_line; }
  long long last() const { return last_; }
  double epoch(long long index) const { return arc_.values[offset(index)]; }
  double magnitude(long long index) const { return V_norm(arc_.lines[offset(index)]); }

 private:
  std::size_t offset(long long index) const {
    return static_cast<std::size_t>(index - arc_.first_line);
  }
  const BurningArc& arc_;
  long long last_;
};

}  // namespace

bool Test_LowThrustData(BurningArc& arc, int& count, std::vector<int>& starts,
                        std::vector<int>& ends) {
  count = 0;
  starts.clear();
  ends.clear();
  const ArcLines lines(arc);
  if (arc.values.empty() || !(lines.first() < lines.last())) return true;

  long long i = lines.first();
  bool inside = false;
  bool short_step = false;  // a step under a day was taken: the phase must close next
  if (lines.magnitude(i) > kThrustLimitTested) error401(i, lines.magnitude(i));

  for (;;) {
    if (!inside && i == lines.last()) {
      // A single line left after a closed phase cannot open another one.
      format_error("ErrorA03", i, "Missing the first line of the burning arc.");
    }
    const double dt = lines.epoch(i + 1) - lines.epoch(i);
    if (!inside) {
      // A phase opens with a zero-thrust line sharing the epoch of the next line.
      if (std::abs(dt) > kZero) {
        format_error("ErrorA03", i, "Missing the first line of the burning arc.");
      }
      if (lines.magnitude(i) > kZero) {
        format_error("ErrorA04", i,
                     "The thrust magnitude of the first line of the burning arc is not 0.");
      }
      starts.push_back(static_cast<int>(i));
      inside = true;
    } else {
      const double un = lines.magnitude(i + 1);
      if (short_step || (std::abs(dt) < kZero && un < kZero)) {
        if (std::abs(dt) > kZero) {
          format_error("ErrorA05", i, "Missing the last line of the burning arc.");
        }
        if (un > kZero) {
          format_error("ErrorA06", i,
                       "The thrust magnitude of the last line of the burning arc is not 0.");
        }
        ends.push_back(static_cast<int>(i + 1));
        ++count;
        if (i + 1 == lines.last()) return true;
        // The closing line is skipped; what follows up to the next opening line is a
        // coast, not examined here.
        i += 2;
        inside = false;
        short_step = false;
        if (i > lines.last()) return true;
        if (lines.magnitude(i) > kThrustLimitTested) error401(i, lines.magnitude(i));
        continue;
      }
      if (std::abs(dt - kThrustStep) > kZero) {
        if (dt < 0.0) epoch_error("ErrorA07", i, "less than 0.");
        short_step = true;
        if (dt > kThrustStep) epoch_error("ErrorA08", i, "greater than 1 day.");
      }
    }
    ++i;
    if (inside && i == lines.last()) {
      format_error("ErrorA05", i, "Missing the last line of the burning arc.");
    }
    if (lines.magnitude(i) > kThrustLimitTested) error401(i, lines.magnitude(i));
  }
}

bool CheckBuringArc(const ShipClass& ship) {
  int count = 0;
  std::vector<int> starts;
  std::vector<int> ends;
  for (const BurningArc& original : ship.burning_arcs) {
    BurningArc arc = original;
    Test_LowThrustData(arc, count, starts, ends);
    Test_LowThrust_RKF78(arc, count, starts, ends);
  }
  return true;
}
