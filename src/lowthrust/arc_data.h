// The layout of a burning arc's lines: thrust phases, each opened by a zero-thrust line
// sharing the epoch of the first thrust line, thrust lines one day apart (the last step
// may be shorter), closed by a zero-thrust line sharing the epoch of the last; coasts
// between phases; no line above the engine's limit.
#pragma once

#include <cstddef>
#include <vector>

#include "records/findings.h"
#include "records/records.h"

namespace kavren {

// The numbers of an arc's lines, line i (0-based from first_line): its epoch (MJD) and
// thrust vector (N). Either the arc's own `lines` and `values`, or numbers read from its
// text, four a line (epoch, ux, uy, uz), which must outlive the table.
class ArcTable {
 public:
  explicit ArcTable(const BurningArc& arc);
  ArcTable(const BurningArc& arc, const std::vector<double>& numbers);

  std::size_t size() const { return size_; }
  double epoch(std::size_t i) const { return numbers_ ? numbers_[4 * i] : arc_.values[i]; }
  // Component `axis` of the thrust; a line holding fewer than three numbers thrusts zero
  // along the missing axes.
  double thrust(std::size_t i, int axis) const;
  // The thrust magnitude, as V_norm gives it for the line's vector.
  double magnitude(std::size_t i) const;

 private:
  const BurningArc& arc_;
  const double* numbers_ = nullptr;
  std::size_t size_ = 0;
};

// The phases of one arc: file line indices of the opening (starts) and closing (ends)
// zero-thrust line of each.
struct ArcPhases {
  int count = 0;
  std::vector<int> starts;
  std::vector<int> ends;
};

// Walks the arc's lines into `phases`. False when the layout is broken (the arc cannot
// be integrated) or the collector says to stop. A line above the thrust limit is a
// finding after which the walk goes on for a collector that goes on.
bool walk_thrust_table(const BurningArc& arc, ArcPhases& phases, Findings& findings, int ship);
bool walk_thrust_table(const BurningArc& arc, const ArcTable& table, ArcPhases& phases,
                       Findings& findings, int ship);

}  // namespace kavren

// The Euclidean norm of a vector of any length.
double V_norm(const std::vector<double>& v);
