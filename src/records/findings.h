// Checks report what they find as values: every evaluation of a rule updates that
// rule's row (count, worst value, margin), every violation becomes a Finding with the
// exact message kavren-check prints for it. A collector made to stop at the first
// violation tells the checks to stop; printing is the caller's business.
#pragma once

#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

#include "kavren/report.h"

namespace kavren {

// Every rule, one per message kavren-check can print. First the rules with a quantity, in
// the order a run checks them; then the rules of the files' layout, which have none.
enum class Rule : int {
  epoch_start,
  epoch_end,
  event_order,
  drop_speed,
  launch_time,
  launch_position,
  launch_mass,
  launch_initial_mass,
  launch_speed,
  launch_earth_position,
  launch_earth_velocity,
  flyby_time,
  flyby_position,
  flyby_mass,
  flyby_planet_position,
  flyby_speed_change,
  flyby_turn,
  visit_time,
  visit_position,
  visit_velocity,
  visit_asteroid_position,
  visit_asteroid_velocity,
  resource_balance,
  miners_per_ship,
  final_mass,
  mining_interval,
  miner_mass,
  collected_mass,
  collected_something,
  rendezvous_count,
  thrust_magnitude,
  thrust_step_order,
  thrust_step_length,
  phase_start,
  arc_end_order,
  sun_distance,
  arc_position,
  arc_velocity,
  arc_mass,
  ship_count,
  // Without a quantity: the arguments, the files, the solution's grammar and grouping,
  // the layout of a thrust table.
  arguments,
  catalogue_file,
  solution_file,
  score_file,
  empty_solution,
  line_format,
  event_id,
  arc_event_id,
  ship_id,
  launch_count,
  launch_start,
  launch_lines,
  venus_count,
  venus_lines,
  earth_count,
  earth_lines,
  mars_count,
  mars_lines,
  rendezvous_count_odd,
  rendezvous_lines,
  arc_line_count,
  thrust_first_line,
  thrust_zero_line,
  thrust_last_line,
  thrust_closing_line,
  count
};
// The first rule without a quantity.
constexpr Rule kFirstLayoutRule = Rule::arguments;

// One row of the rule catalogue.
struct RuleInfo {
  const char* id;
  const char* code;      // the message's code, "Error201"
  const char* quantity;  // empty for a rule without a quantity
  const char* unit;
  const char* relation;  // value relation limit must hold: "<=", "<", ">=", ">"
  int exit_status;       // kavren-check's exit status when this message is its verdict
};
const RuleInfo& rule_info(Rule rule);

// The 1-based line number of a 0-based line index, in 64 bits so that no index overflows.
inline long long printed_line(int index) {
  return static_cast<long long>(index) + 1;
}

// "prefix<line>suffix\n": the shape of most messages (line printed 1-based).
std::string line_message(const char* prefix, long long line, const char* suffix);

class Findings {
 public:
  // Rows are kept for the rules first..last (inclusive); evaluations of other rules are
  // not counted. A collector for one arc keeps only the arcs' rules.
  explicit Findings(bool stop_at_first, Rule first = Rule(0),
                    Rule last = Rule(static_cast<int>(Rule::count) - 1));

  // One evaluation of `rule`; `holds` is the rule's own verdict on the value. On a
  // violation the finding's code and message come from `message()` (a callable
  // returning std::string). Returns false when the checks must stop.
  template <class Message>
  bool check(Rule rule, bool holds, double value, double limit,
             std::initializer_list<long long> lines, int ship, Message&& message) {
    evaluate(rule, holds, value, limit, lines.size() ? *lines.begin() : 0, ship);
    if (holds) return true;
    return fail(rule, message(), lines, ship, value, limit);
  }

  // Records one evaluation only.
  void evaluate(Rule rule, bool holds, double value, double limit, long long line, int ship);
  // A violation of `rule`, whose message carries the rule's code; value and limit stay
  // NaN for a rule without a quantity. Returns false when the checks must stop.
  bool fail(Rule rule, std::string message, std::initializer_list<long long> lines, int ship,
            double value = kNotANumber, double limit = kNotANumber);
  void warn(std::string kind, std::string message, std::vector<long long> lines, int ship,
            std::string rule = {});

  bool stop_at_first() const { return stop_at_first_; }
  // True once a stopping collector holds a finding.
  bool stopped() const { return stop_at_first_ && !findings_.empty(); }
  bool any() const { return !findings_.empty(); }

  // Appends what `later` collected, as if its checks had run after these.
  void merge(Findings&& later);
  void merge(const Findings& later);

  // The same evaluations made `line_shift` lines further down the file, on the `ship`-th
  // ship: the lines and ship ordinals of rows, findings and warnings follow (a ship of 0,
  // none, stays). Messages are left as they are: a collector with findings is moved by
  // checking again, not by this.
  void relocate(long long line_shift, int ship);

  std::vector<Finding>& findings() { return findings_; }
  // The constraint rows of the rules evaluated at least once, and the warnings, with
  // those of limits met within 0.1 % of their size added.
  std::vector<Constraint> constraints() const;
  std::vector<Warning> warnings() const;

 private:
  struct Row {
    std::uint64_t evaluations = 0, violations = 0;
    double worst = kNotANumber, limit = kNotANumber, margin = kNotANumber;
    long long line = 0;
    int ship = 0;
    bool nan_warned = false;
  };
  static double margin_of(Rule rule, double value, double limit);

  // The row of `rule`, or null when this collector keeps none for it.
  Row* row(int rule) {
    const int k = rule - first_rule_;
    return k >= 0 && k < static_cast<int>(rows_.size()) ? &rows_[static_cast<std::size_t>(k)]
                                                        : nullptr;
  }
  const Row* row(int rule) const { return const_cast<Findings*>(this)->row(rule); }

  bool stop_at_first_;
  int first_rule_;
  std::vector<Finding> findings_;
  // Warnings as they are reported: one per kind, ship and rule, in the order of their
  // first occurrence, naming the first few places, with how often it occurred.
  struct WarningGroup {
    Warning first;
    std::uint64_t times = 0;
  };
  // Counts one more occurrence of `warning` (with `times` occurrences and the lines
  // given) in its group, or opens the group.
  void add_warning(const Warning& warning, std::uint64_t times);
  std::vector<WarningGroup> warnings_;
  std::vector<Row> rows_;
};

}  // namespace kavren
