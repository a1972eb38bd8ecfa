// The differential corrector of one burning arc. The thrust of every thrust line is
// turned by a rotation vector that varies linearly along the arc (six parameters) and,
// when the end mass is off or turning alone cannot reach the end state, scaled by a
// factor that is common (a seventh), linear (an eighth) or quadratic (a ninth) along the
// arc; the parameters are solved by Levenberg-Marquardt on the end-state error of the
// verifier's own integration of the arc, with a Jacobian by finite differences of that
// integration.
#pragma once

#include <array>
#include <string>
#include <vector>

#include "kavren/report.h"
#include "records/records.h"

namespace kavren {

struct CorrectorSettings {
  double safety = 0.5;  // accepted end-state errors, as a fraction of each limit
  double max_radians = 0.17453292519943295;  // largest turn of a thrust line
  double max_scale = 0.01;                   // largest relative change of a magnitude
  int max_iterations = 25;
};

struct Correction {
  bool polished = false;
  std::string reason;  // when not polished
  // End-state errors: km, km/s, kg (NaN when the arc cannot be integrated).
  double before[3] = {kNotANumber, kNotANumber, kNotANumber};
  double after[3] = {kNotANumber, kNotANumber, kNotANumber};
  // The new thrust of each changed line: arc-relative index and vector (N).
  std::vector<int> changed;
  std::vector<std::array<double, 3>> thrust;
  double max_turn_degrees = 0.0;
  double max_magnitude_change = 0.0;  // N
  int iterations = 0;
  int integrations = 0;
};

// `arc` holds its lines' numbers (lines and values). Never throws on any arc; the
// verifier's own findings of the arc decide what cannot be corrected.
Correction correct_arc(const BurningArc& arc, const CorrectorSettings& settings);

}  // namespace kavren
