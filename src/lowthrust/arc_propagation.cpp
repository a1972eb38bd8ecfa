#include "lowthrust/arc_propagation.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <iostream>

#include "lowthrust/dynamics.h"
#include "lowthrust/rkf78.h"
#include "records/output.h"
#include "records/termination.h"

namespace {

constexpr int kDim = 7;
constexpr double kRelTol = 1e-12;
constexpr double kAbsTol[kDim] = {1e-10, 1e-10, 1e-10, 1e-12, 1e-12, 1e-12, 1e-08};
constexpr int kMaxEval = 100000;
constexpr double kNoCoastGap = 1e-13;         // TU
constexpr double kOrderingTolerance = -1e-08;  // TU, about 0.05 s

// One leg from t to tout on a fresh start; the integrator's flag is not examined, the
// state it leaves is what the comparison judges.
void integrate(RK::DerivFn model, double* y, const double* para, double& t, double tout) {
  double work[14 * kDim];
  int flag = 1;
  RK::RKF78(model, y, para, t, tout, kDim, kRelTol, kAbsTol, flag, work, kMaxEval, nullptr);
}

void coast(double* y, double& t, double tout, long long line_reference) {
  const double para[1] = {static_cast<double>(line_reference)};
  integrate(TwoBodyDy, y, para, t, tout);
}

double line_epoch(const BurningArc& arc, long long relative) {
  return arc.values[static_cast<std::size_t>(relative)];
}

double thrust_component(const BurningArc& arc, long long relative, int axis) {
  const std::vector<double>& line = arc.lines[static_cast<std::size_t>(relative)];
  // A line holding fewer than three numbers thrusts zero along the missing axes.
  return static_cast<std::size_t>(axis) < line.size() ? line[axis] : 0.0;
}

}  // namespace

namespace kavren {

void integrate_arc(const BurningArc& arc, int count, const std::vector<int>& starts,
                   const std::vector<int>& ends, double* reached) {
  double t = mjd_to_tu(arc.start_state.epoch);
  double y[kDim];
  for (int i = 0; i < 3; ++i) {
    y[i] = arc.start_state.r[i] / 149597870.691;
    y[3 + i] = arc.start_state.v[i] / 29.784691832592745;
  }
  y[6] = arc.start_state.mass;
  const double tf = mjd_to_tu(arc.end_state.epoch);

  if (count == 0) {
    coast(y, t, tf, arc.start_state.line_index);
  } else {
    const long long stored =
        static_cast<long long>(std::min(arc.lines.size(), arc.values.size()));
    const long long segments = std::min<long long>(
        count, static_cast<long long>(std::min(starts.size(), ends.size())));
    std::vector<double> block;
    for (long long k = 0; k < segments; ++k) {
      // Arc-relative indices: s is the opening zero line, e the last thrust line.
      const long long s = static_cast<long long>(starts[k]) - arc.first_line;
      const long long e = static_cast<long long>(ends[k]) - arc.first_line - 1;
      const long long n = e - s;
      // A phase whose thrust lines are not all stored in the arc is left out entirely
      // (never the case for phases listed by the data check).
      if (n < 1 || s + 1 < 0 || e >= stored) continue;

      const double ta = mjd_to_tu(line_epoch(arc, s + 1));
      const double gap = ta - t;
      if (gap <= kNoCoastGap) {
        if (gap < kOrderingTolerance) {
          kavren::out() << "Error003. Event Time Error on the line "
                    << static_cast<long long>(starts[k]) + 1
                    << ": The start epoch of the burning arc is " << line_epoch(arc, s + 1)
                    << "(MJD), earlier than the end epoch of the previous event (or burning arc)."
                    << std::endl;
          end_run(0);
        }
      } else if (gap > kNoCoastGap) {
        coast(y, t, ta, static_cast<long long>(starts[k]) - 1);
      }

      // Thrust table: times (TU) and thrust vectors of lines s+1 .. e.
      block.assign(static_cast<std::size_t>(4 * n + 2), 0.0);
      block[0] = static_cast<double>(static_cast<long long>(starts[k]) + 1);
      block[1] = static_cast<double>(n);
      for (long long p = 0; p < n; ++p) {
        const long long line = s + 1 + p;
        block[static_cast<std::size_t>(2 + p)] = mjd_to_tu(line_epoch(arc, line));
        for (int axis = 0; axis < 3; ++axis) {
          block[static_cast<std::size_t>(2 + (axis + 1) * n + p)] =
              thrust_component(arc, line, axis);
        }
      }
      const OrderedThrustTable ordered(block.data());
      integrate(LowThrustDy, y, block.data(), t, mjd_to_tu(line_epoch(arc, e)));
    }

    const double gap = tf - t;
    if (gap <= kNoCoastGap) {
      if (gap < kOrderingTolerance) {
        kavren::out() << "Error004. Event Time Error on the line "
                  << static_cast<long long>(arc.last_line) + 1
                  << ": The end epoch of the burning arc is " << arc.end_epoch
                  << "(MJD), later than the start epoch of the subsequent event." << std::endl;
        end_run(0);
      }
    } else if (gap > kNoCoastGap) {
      coast(y, t, tf, arc.last_line);
    }
  }

  for (int i = 0; i < 3; ++i) {
    reached[i] = y[i] * 149597870.691;
    reached[3 + i] = y[3 + i] * 29.784691832592745;
  }
  reached[6] = y[6];
}

}  // namespace kavren

bool Test_LowThrust_RKF78(const BurningArc& arc, int count, const std::vector<int>& starts,
                          const std::vector<int>& ends) {
  double reached[7];
  kavren::integrate_arc(arc, count, starts, ends, reached);
  const StateStruct& end = arc.end_state;
  const double expected[7] = {end.r[0], end.r[1], end.r[2], end.v[0],
                              end.v[1], end.v[2], end.mass};
  return Judge_rvmf(reached, expected, end.line_index);
}

bool Judge_rvmf(const double* reached, const double* expected, int line) {
  const long long shown = static_cast<long long>(line) + 1;
  const double dx = reached[0] - expected[0];
  const double dy = reached[1] - expected[1];
  const double dz = reached[2] - expected[2];
  const double dr = std::sqrt(dx * dx + dy * dy + dz * dz);
  if (dr > 1000.0) {
    kavren::out() << "Error201. Position Error on the line " << shown
              << ": The position error between the integral state from the previous event and "
                 "the state shown in the file is "
              << dr << " km, greater than the constraint 1000 km." << std::endl;
    kavren::end_run(1);
  }
  const double dvx = reached[3] - expected[3];
  const double dvy = reached[4] - expected[4];
  const double dvz = reached[5] - expected[5];
  const double dv = std::sqrt(dvx * dvx + dvy * dvy + dvz * dvz);
  if (dv > 0.001) {
    kavren::out() << "Error202. Velocity Error on the line " << shown
              << ": The velocity error between the integral state from the previous event and "
                 "the state shown in the file is "
              << dv * 1000 << " m/s, greater than the constraint 1 m/s." << std::endl;
    kavren::end_run(1);
  }
  const double dm = std::abs(reached[6] - expected[6]);
  if (dm > 0.001) {
    kavren::out() << "Error203. Mass Error on the line " << shown
              << ": The mass error between the integral state from the previous event and the "
                 "state shown in the file is "
              << dm << " kg, greater than the constraint 0.001 kg." << std::endl;
    kavren::end_run(1);
  }
  return true;
}

double V_norm(const std::vector<double>& v) {
  double sum = 0.0;
  for (double x : v) sum += x * x;
  return std::sqrt(sum);
}
