#include "polish/corrector.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <utility>

#include "kavren/limits.h"
#include "lowthrust/arc_data.h"
#include "lowthrust/arc_integration.h"
#include "records/findings.h"

namespace kavren {
namespace {

constexpr int kMaxParams = 9;
constexpr int kResiduals = 7;
constexpr double kStep = 1e-4;         // finite-difference step: rad, or relative magnitude
constexpr double kMaxTurnStep = 0.05;  // rad one Newton step may turn a line at most
constexpr double kDegrees = 57.295779513082323;

double norm3(const double* v) {
  return std::sqrt(v[0] * v[0] + v[1] * v[1] + v[2] * v[2]);
}

// v turned about the rotation vector w (its direction the axis, its length the angle).
void rotate(const double* w, const double* v, double* out) {
  const double angle = norm3(w);
  if (!(angle > 0.0)) {
    std::copy(v, v + 3, out);
    return;
  }
  const double k[3] = {w[0] / angle, w[1] / angle, w[2] / angle};
  const double c = std::cos(angle), s = std::sin(angle);
  const double kxv[3] = {k[1] * v[2] - k[2] * v[1], k[2] * v[0] - k[0] * v[2],
                         k[0] * v[1] - k[1] * v[0]};
  const double kdv = k[0] * v[0] + k[1] * v[1] + k[2] * v[2];
  for (int j = 0; j < 3; ++j) out[j] = v[j] * c + kxv[j] * s + k[j] * kdv * (1.0 - c);
}

// A thrust line the corrector varies: its index in the arc, its place along the arc's
// thrust (-1 at the first such line, 1 at the last) and its thrust as written.
struct Line {
  int index;
  double tau;
  double u[3];
};

// The rotation vector of a line: a + tau b.
void rotation_at(const double* p, double tau, double* w) {
  for (int k = 0; k < 3; ++k) w[k] = p[k] + tau * p[3 + k];
}

// The largest turn the parameters give any line (|w| is largest at tau = -1 or 1).
double largest_turn(const double* p) {
  double w1[3], w2[3];
  rotation_at(p, -1.0, w1);
  rotation_at(p, 1.0, w2);
  return std::max(norm3(w1), norm3(w2));
}

// The largest relative magnitude change the parameters give any line.
double largest_scale(const double* p, int n) {
  return (n > 6 ? std::abs(p[6]) : 0.0) + (n > 7 ? std::abs(p[7]) : 0.0) +
         (n > 8 ? std::abs(p[8]) : 0.0);
}

class ArcModel {
 public:
  ArcModel(const BurningArc& arc, const ArcPhases& phases, std::vector<Line> lines)
      : arc_(arc), phases_(phases), lines_(std::move(lines)) {}

  const std::vector<Line>& lines() const { return lines_; }
  int integrations() const { return integrations_; }

  // The thrust of a line under the parameters (n of them), never above the engine's
  // limit; `capped` when the limit cut a magnitude that was meant to grow.
  void thrust(const Line& line, const double* p, int n, double* u, bool& capped) const {
    double w[3];
    rotation_at(p, line.tau, w);
    rotate(w, line.u, u);
    const double scale = 1.0 + (n > 6 ? p[6] : 0.0) + (n > 7 ? p[7] * line.tau : 0.0) +
                         (n > 8 ? p[8] * line.tau * line.tau : 0.0);
    for (int k = 0; k < 3; ++k) u[k] *= scale;
    double magnitude = norm3(u);
    if (!(magnitude > kThrustCap)) return;
    if (scale > 1.0) capped = true;
    for (int round = 0; round < 8 && magnitude > kThrustCap; ++round) {
      const double f = kThrustCap / magnitude * (1.0 - 2e-16 * round);
      for (int k = 0; k < 3; ++k) u[k] *= f;
      magnitude = norm3(u);
    }
  }

  // The scaled end-state error (position / 1000 km, velocity / 0.001 km/s, mass / 0.001
  // kg) of the verifier's integration with the parameters. False when the integration
  // reaches no comparable end state (a pass too close to the Sun).
  bool residual(const double* p, int n, double* r, bool* capped = nullptr) {
    bool cut = false;
    for (const Line& line : lines_) {
      std::vector<double>& written = arc_.lines[static_cast<std::size_t>(line.index)];
      double u[3];
      thrust(line, p, n, u, cut);
      written.assign(u, u + 3);
    }
    if (capped != nullptr) *capped = cut;
    ++integrations_;
    Findings findings(false, Rule::thrust_magnitude, Rule::arc_mass);
    ArcIntegration run;
    run.ship = arc_.ship_number;
    integrate_and_compare(arc_, phases_, findings, run);
    for (const Finding& f : findings.findings()) {
      if (f.code != "Error201" && f.code != "Error202" && f.code != "Error203") return false;
    }
    const StateStruct& end = arc_.end_state;
    for (int k = 0; k < 3; ++k) {
      r[k] = (run.reached[k] - end.r[k]) / kPositionTolerance;
      r[3 + k] = (run.reached[3 + k] - end.v[k]) / kVelocityTolerance;
    }
    r[6] = (run.reached[6] - end.mass) / kMassTolerance;
    for (int k = 0; k < kResiduals; ++k) {
      if (!std::isfinite(r[k])) return false;
    }
    return true;
  }

 private:
  BurningArc arc_;
  ArcPhases phases_;
  std::vector<Line> lines_;
  int integrations_ = 0;
};

double cost_of(const double* r) {
  double sum = 0.0;
  for (int k = 0; k < kResiduals; ++k) sum += r[k] * r[k];
  return sum;
}

// Errors in km, km/s, kg of a scaled residual.
void errors_of(const double* r, double* e) {
  e[0] = norm3(r) * kPositionTolerance;
  e[1] = norm3(r + 3) * kVelocityTolerance;
  e[2] = std::abs(r[6]) * kMassTolerance;
}

bool within(const double* r, double position_velocity, double mass) {
  return norm3(r) <= position_velocity && norm3(r + 3) <= position_velocity &&
         std::abs(r[6]) <= mass;
}

// Solves m x = b (n unknowns) by elimination with partial pivoting; false when singular.
bool solve(double m[kMaxParams][kMaxParams], double* b, int n, double* x) {
  for (int c = 0; c < n; ++c) {
    int pivot = c;
    for (int row = c + 1; row < n; ++row) {
      if (std::abs(m[row][c]) > std::abs(m[pivot][c])) pivot = row;
    }
    if (!(std::abs(m[pivot][c]) > 0.0)) return false;
    if (pivot != c) {
      for (int k = 0; k < n; ++k) std::swap(m[c][k], m[pivot][k]);
      std::swap(b[c], b[pivot]);
    }
    for (int row = c + 1; row < n; ++row) {
      const double f = m[row][c] / m[c][c];
      for (int k = c; k < n; ++k) m[row][k] -= f * m[c][k];
      b[row] -= f * b[c];
    }
  }
  for (int row = n - 1; row >= 0; --row) {
    double sum = b[row];
    for (int k = row + 1; k < n; ++k) sum -= m[row][k] * x[k];
    x[row] = sum / m[row][row];
  }
  for (int k = 0; k < n; ++k) {
    if (!std::isfinite(x[k])) return false;
  }
  return true;
}

struct Solve {
  bool reached = false;  // every integration reached a comparable end
  double p[kMaxParams] = {};
  double r[kResiduals] = {};
  bool capped = false;
  int iterations = 0;
};

// Levenberg-Marquardt from p = 0 with n parameters, until the errors are within
// `aim` (mass: `mass_aim`) of the limits, no step lowers the error, or the iterations end.
Solve levenberg_marquardt(ArcModel& model, const double* r0, int n, double aim, double mass_aim,
                          const CorrectorSettings& settings) {
  Solve s;
  s.reached = true;
  std::copy(r0, r0 + kResiduals, s.r);
  double cost = cost_of(s.r);
  double lambda = 1e-3;
  for (int it = 0; it < settings.max_iterations; ++it) {
    if (within(s.r, aim, mass_aim)) break;
    s.iterations = it + 1;
    double jac[kResiduals][kMaxParams];
    for (int k = 0; k < n; ++k) {
      double q[kMaxParams], rq[kResiduals];
      std::copy(s.p, s.p + kMaxParams, q);
      q[k] += kStep;
      double sign = 1.0;
      if (!model.residual(q, n, rq)) {
        q[k] = s.p[k] - kStep;
        sign = -1.0;
        if (!model.residual(q, n, rq)) {
          s.reached = false;
          return s;
        }
      }
      for (int i = 0; i < kResiduals; ++i) jac[i][k] = sign * (rq[i] - s.r[i]) / kStep;
    }
    double a[kMaxParams][kMaxParams], g[kMaxParams];
    for (int i = 0; i < n; ++i) {
      g[i] = 0.0;
      for (int l = 0; l < kResiduals; ++l) g[i] += jac[l][i] * s.r[l];
      for (int j = 0; j < n; ++j) {
        double sum = 0.0;
        for (int l = 0; l < kResiduals; ++l) sum += jac[l][i] * jac[l][j];
        a[i][j] = sum;
      }
    }
    bool accepted = false;
    for (int attempt = 0; attempt < 12 && !accepted; ++attempt, lambda *= 8.0) {
      double m[kMaxParams][kMaxParams], b[kMaxParams], step[kMaxParams] = {};
      for (int i = 0; i < n; ++i) {
        for (int j = 0; j < n; ++j) m[i][j] = a[i][j];
        m[i][i] += lambda * a[i][i] + 1e-300;
        b[i] = -g[i];
      }
      if (!solve(m, b, n, step)) continue;
      // Step control: a step turns no line by more than kMaxTurnStep and changes the
      // magnitudes by at most the allowed scale.
      double shrink = 1.0;
      const double turn = largest_turn(step);
      if (turn > kMaxTurnStep) shrink = kMaxTurnStep / turn;
      const double rescale = largest_scale(step, n);
      if (rescale * shrink > settings.max_scale) shrink = settings.max_scale / rescale;
      double q[kMaxParams] = {}, rq[kResiduals];
      for (int k = 0; k < n; ++k) q[k] = s.p[k] + shrink * step[k];
      bool capped = false;
      if (!model.residual(q, n, rq, &capped)) continue;
      const double trial = cost_of(rq);
      if (trial < cost) {
        accepted = true;
        std::copy(q, q + kMaxParams, s.p);
        std::copy(rq, rq + kResiduals, s.r);
        s.capped = capped;
        cost = trial;
        lambda = std::max(lambda * 0.2 / 8.0, 1e-12);
      }
    }
    if (!accepted) break;
  }
  return s;
}

std::string format(const char* pattern, double a, double b = 0.0, double c = 0.0) {
  char buffer[200];
  std::snprintf(buffer, sizeof buffer, pattern, a, b, c);
  return buffer;
}

}  // namespace

Correction correct_arc(const BurningArc& arc, const CorrectorSettings& settings) {
  Correction out;
  // The verifier's own walk of the arc's lines gives its thrust phases.
  Findings layout(false, Rule::thrust_magnitude, Rule::arc_mass);
  ArcPhases phases;
  const bool laid_out = walk_thrust_table(arc, phases, layout, arc.ship_number);
  if (!laid_out) {
    out.reason = "its lines are not laid out as thrust phases";
    return out;
  }
  std::vector<Line> lines;
  bool thrusts = false;
  const ArcTable table(arc);
  for (int k = 0; k < phases.count; ++k) {
    const int s = phases.starts[static_cast<std::size_t>(k)] - arc.first_line;
    const int e = phases.ends[static_cast<std::size_t>(k)] - arc.first_line - 1;
    for (int i = s + 1; i <= e; ++i) {
      const double magnitude = table.magnitude(static_cast<std::size_t>(i));
      if (!(magnitude > 0.0)) continue;
      if (magnitude > kZeroThrust) thrusts = true;
      Line line{i, 0.0, {}};
      for (int axis = 0; axis < 3; ++axis)
        line.u[axis] = table.thrust(static_cast<std::size_t>(i), axis);
      lines.push_back(line);
    }
  }
  if (!lines.empty()) {
    const double t0 = table.epoch(static_cast<std::size_t>(lines.front().index));
    const double t1 = table.epoch(static_cast<std::size_t>(lines.back().index));
    const double half = (t1 - t0) / 2.0;
    for (Line& line : lines) {
      const double t = table.epoch(static_cast<std::size_t>(line.index));
      line.tau = half > 0.0 ? std::clamp((t - t0) / half - 1.0, -1.0, 1.0) : 0.0;
    }
  }

  ArcModel model(arc, phases, std::move(lines));
  const double zero[kMaxParams] = {};
  double r0[kResiduals];
  const bool integrated = model.residual(zero, 6, r0);
  out.integrations = model.integrations();
  if (integrated) {
    errors_of(r0, out.before);
    std::copy(out.before, out.before + 3, out.after);
  }
  if (layout.any()) {
    out.reason = "its lines break a rule of thrust tables (" + layout.findings().front().code + ")";
    return out;
  }
  if (!thrusts) {
    out.reason = "the arc has no thrust to vary (a coast)";
    return out;
  }
  if (!integrated) {
    out.reason = "its integration passes closer than 0.3 AU to the Sun";
    return out;
  }

  const double aim = 0.1 * settings.safety;
  // Turning keeps the mass flow, so the thrust is turned first; the magnitude is varied
  // (one common factor, then one that changes linearly, then quadratically along the arc)
  // only when the mass is off or turning alone does not reach the end state.
  const bool mass_off = std::abs(r0[6]) > 0.5 * settings.safety;
  const auto acceptable = [&](const Solve& s, int n) {
    return s.reached && within(s.r, settings.safety, settings.safety) &&
           largest_turn(s.p) <= settings.max_radians && largest_scale(s.p, n) <= settings.max_scale;
  };
  Solve best;
  int n = 0;
  int iterations = 0;
  for (int params = mass_off ? 7 : 6; params <= kMaxParams; ++params) {
    Solve s =
        levenberg_marquardt(model, r0, params, aim, params == 6 ? settings.safety : aim, settings);
    iterations += s.iterations;
    const bool better = n == 0 || (s.reached && (!best.reached || cost_of(s.r) < cost_of(best.r)));
    if (acceptable(s, params) || better) {
      best = s;
      n = params;
    }
    if (acceptable(s, params)) break;
  }
  out.iterations = iterations;
  out.integrations = model.integrations();
  if (!best.reached) {
    out.reason = "the corrected integration passes closer than 0.3 AU to the Sun";
    return out;
  }
  double reached[3];
  errors_of(best.r, reached);
  const double turn = largest_turn(best.p);
  const double scale = largest_scale(best.p, n);
  if (turn > settings.max_radians) {
    out.reason = format("a turn of %.3g degrees would be needed, more than the %.3g allowed",
                        turn * kDegrees, settings.max_radians * kDegrees);
    return out;
  }
  if (std::abs(scale) > settings.max_scale) {
    out.reason = format(
        "a magnitude change of %.3g %% would be needed, more than the %.3g %% "
        "allowed",
        100.0 * scale, 100.0 * settings.max_scale);
    return out;
  }
  if (!within(best.r, settings.safety, settings.safety)) {
    if (best.capped && std::abs(best.r[6]) > settings.safety) {
      out.reason = "its thrust is at the 0.6 N cap where more is needed";
    } else {
      out.reason = format(
          "the miss is beyond what the allowed change can correct (closest "
          "reached: %.6g km, %.6g m/s, %.6g kg)",
          reached[0], reached[1] * 1000.0, reached[2]);
    }
    return out;
  }

  out.polished = true;
  std::copy(reached, reached + 3, out.after);
  bool capped = false;
  for (const Line& line : model.lines()) {
    double u[3];
    model.thrust(line, best.p, n, u, capped);
    if (u[0] == line.u[0] && u[1] == line.u[1] && u[2] == line.u[2]) continue;
    out.changed.push_back(line.index);
    out.thrust.push_back({u[0], u[1], u[2]});
    const double cross[3] = {line.u[1] * u[2] - line.u[2] * u[1],
                             line.u[2] * u[0] - line.u[0] * u[2],
                             line.u[0] * u[1] - line.u[1] * u[0]};
    const double dot = line.u[0] * u[0] + line.u[1] * u[1] + line.u[2] * u[2];
    out.max_turn_degrees = std::max(out.max_turn_degrees, std::atan2(norm3(cross), dot) * kDegrees);
    out.max_magnitude_change =
        std::max(out.max_magnitude_change, std::abs(norm3(u) - norm3(line.u)));
  }
  return out;
}

}  // namespace kavren
