#include "lowthrust/arc_data.h"

#include <algorithm>
#include <cmath>
#include <sstream>
#include <string>

#include "kavren/limits.h"

namespace kavren {
namespace {

// The arc's lines as the walk sees them: file line index -> epoch and thrust magnitude.
class ArcLines {
 public:
  explicit ArcLines(const BurningArc& arc, const ArcTable& table) : arc_(arc), table_(table) {
    // The walk stops at the last line actually stored, should the table hold fewer
    // lines than first_line..last_line spans (the reader never builds such an arc).
    last_ = std::min<long long>(arc.last_line,
                                arc.first_line + static_cast<long long>(table.size()) - 1);
  }
  long long first() const { return arc_.first_line; }
  long long last() const { return last_; }
  double epoch(long long index) const { return table_.epoch(offset(index)); }
  double magnitude(long long index) const { return table_.magnitude(offset(index)); }

 private:
  std::size_t offset(long long index) const {
    return static_cast<std::size_t>(index - arc_.first_line);
  }
  const BurningArc& arc_;
  const ArcTable& table_;
  long long last_;
};

class Walk {
 public:
  Walk(const BurningArc& arc, const ArcTable& table, ArcPhases& phases, Findings& findings,
       int ship)
      : arc_(arc), lines_(arc, table), phases_(phases), f_(findings), ship_(ship) {}

  bool run();

 private:
  // Line numbers are printed 1-based, formed in 64 bits so that no index overflows.
  bool thrust_within_limit(long long i) {
    const double magnitude = lines_.magnitude(i);
    return f_.check(Rule::thrust_magnitude, !(magnitude > kThrustCapTested), magnitude,
                    kThrustCapTested, {i + 1}, ship_, [&] {
                      std::ostringstream text;
                      text << "Error401. Thrust Magnitude Error on the line " << i + 1
                           << ": The thrust magnitude is " << magnitude
                           << " N, greater than the maximum " << kThrustCap << "N.\n";
                      return text.str();
                    });
  }

  bool format_error(Rule rule, long long i, const char* what) {
    std::string text(rule_info(rule).code);
    text += ". File Format Error on the line ";
    text += std::to_string(i + 1);
    text += ": ";
    text += what;
    text += '\n';
    f_.fail(rule, std::move(text), {i + 1}, ship_);
    return false;
  }

  bool epoch_error(Rule rule, double dt, double limit, long long i, const char* what) {
    f_.evaluate(rule, false, dt, limit, i + 1, ship_);
    std::string text(rule_info(rule).code);
    text += ". Thrust Epoch Error between line " + std::to_string(i + 1) + " and line " +
            std::to_string(i + 2) + ": The time interval is " + what + '\n';
    f_.fail(rule, std::move(text), {i + 1, i + 2}, ship_, dt, limit);
    return false;  // the layout is broken whatever the collector does
  }

  const BurningArc& arc_;
  ArcLines lines_;
  ArcPhases& phases_;
  Findings& f_;
  int ship_;
};

bool Walk::run() {
  phases_.count = 0;
  phases_.starts.clear();
  phases_.ends.clear();
  if (!(lines_.first() < lines_.last())) return true;

  long long i = lines_.first();
  bool inside = false;
  bool short_step = false;  // a step under a day was taken: the phase must close next
  if (!thrust_within_limit(i)) return false;

  for (;;) {
    if (!inside && i == lines_.last()) {
      // A single line left after a closed phase cannot open another one.
      return format_error(Rule::thrust_first_line, i, "Missing the first line of the burning arc.");
    }
    const double dt = lines_.epoch(i + 1) - lines_.epoch(i);
    if (!inside) {
      // A phase opens with a zero-thrust line sharing the epoch of the next line.
      if (std::abs(dt) > kSameEpoch) {
        return format_error(Rule::thrust_first_line, i,
                            "Missing the first line of the burning arc.");
      }
      if (lines_.magnitude(i) > kZeroThrust) {
        return format_error(Rule::thrust_zero_line, i,
                            "The thrust magnitude of the first line of the burning arc is not 0.");
      }
      phases_.starts.push_back(static_cast<int>(i));
      inside = true;
    } else {
      const double un = lines_.magnitude(i + 1);
      if (short_step || (std::abs(dt) < kSameEpoch && un < kZeroThrust)) {
        if (std::abs(dt) > kSameEpoch) {
          return format_error(Rule::thrust_last_line, i,
                              "Missing the last line of the burning arc.");
        }
        if (un > kZeroThrust) {
          return format_error(Rule::thrust_closing_line, i,
                              "The thrust magnitude of the last line of the burning arc is not 0.");
        }
        phases_.ends.push_back(static_cast<int>(i + 1));
        ++phases_.count;
        if (i + 1 == lines_.last()) return true;
        // The closing line is skipped; what follows up to the next opening line is a
        // coast, not examined here.
        i += 2;
        inside = false;
        short_step = false;
        if (i > lines_.last()) return true;
        if (!thrust_within_limit(i)) return false;
        continue;
      }
      if (std::abs(dt - kThrustStep) > kSameEpoch) {
        if (dt < 0.0) return epoch_error(Rule::thrust_step_order, dt, 0.0, i, "less than 0.");
        short_step = true;
        if (dt > kThrustStep) {
          return epoch_error(Rule::thrust_step_length, dt, kThrustStep, i, "greater than 1 day.");
        }
        if (!(std::abs(dt) > kSameEpoch)) {
          f_.warn("zero-length-thrust-step",
                  "The last step of a thrust phase has no length: two thrust lines share one "
                  "epoch, and the thrust table divides by their difference.",
                  {i + 1, i + 2}, ship_, rule_info(Rule::thrust_step_length).id);
        }
      }
      f_.evaluate(Rule::thrust_step_order, true, dt, 0.0, i + 1, ship_);
      f_.evaluate(Rule::thrust_step_length, true, dt, kThrustStep, i + 1, ship_);
    }
    ++i;
    if (inside && i == lines_.last()) {
      return format_error(Rule::thrust_last_line, i, "Missing the last line of the burning arc.");
    }
    if (!thrust_within_limit(i)) return false;
  }
}

}  // namespace

ArcTable::ArcTable(const BurningArc& arc)
    : arc_(arc), size_(std::min(arc.lines.size(), arc.values.size())) {}

ArcTable::ArcTable(const BurningArc& arc, const std::vector<double>& numbers)
    : arc_(arc), numbers_(numbers.data()), size_(numbers.size() / 4) {}

double ArcTable::thrust(std::size_t i, int axis) const {
  if (numbers_ != nullptr) return numbers_[4 * i + 1 + static_cast<std::size_t>(axis)];
  const std::vector<double>& line = arc_.lines[i];
  return static_cast<std::size_t>(axis) < line.size() ? line[static_cast<std::size_t>(axis)] : 0.0;
}

double ArcTable::magnitude(std::size_t i) const {
  if (numbers_ == nullptr) return V_norm(arc_.lines[i]);
  const double* u = numbers_ + 4 * i + 1;
  double sum = 0.0;
  for (int k = 0; k < 3; ++k) sum += u[k] * u[k];
  return std::sqrt(sum);
}

bool walk_thrust_table(const BurningArc& arc, ArcPhases& phases, Findings& findings, int ship) {
  return walk_thrust_table(arc, ArcTable(arc), phases, findings, ship);
}

bool walk_thrust_table(const BurningArc& arc, const ArcTable& table, ArcPhases& phases,
                       Findings& findings, int ship) {
  return Walk(arc, table, phases, findings, ship).run();
}

}  // namespace kavren

double V_norm(const std::vector<double>& v) {
  double sum = 0.0;
  for (double x : v) sum += x * x;
  return std::sqrt(sum);
}
