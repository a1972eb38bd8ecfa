// The Fehlberg 7(8) integration loop, written once for any right-hand side and any
// observer of the accepted steps; RK::RKF78 is this loop over a derivative function and
// an output file. The arithmetic is the same whatever the model, so every instance
// gives the same bits for the same right-hand side.
//
// Model: void operator()(double t, const double* y, double* dy).
// Observer: int land(t, y, dim) when the interval is empty (returns the lines written),
// int step(t, y, dim) after each accepted step (returns the lines written), void tick()
// before each new step (it may throw to abandon the integration).
//
// A model whose evaluations have no effect but their count may offer
// `void spared(long long calls)`. The loop then watches for steps that leave the time
// as it was (a NaN time or step size does): once the step size, the state and the
// derivative at the start of a step repeat those of a step up to eight steps before
// (the signs of NaN components may cycle), every further step repeats that cycle up to
// the evaluation budget, and only its bookkeeping is replayed: the counts, tick(), the
// states the observer sees. The result is the full loop's, bit for bit.
#pragma once

#include <cmath>
#include <cstddef>
#include <cstring>
#include <type_traits>
#include <utility>

#include "lowthrust/rkf78_coefficients.h"

namespace RK {
namespace detail {
constexpr double kEmptyInterval = 1e-14;
constexpr double kRelTolFloor = 1.4440892098500627e-15;  // 2 DBL_EPSILON + 1e-15
constexpr double kU26 = 5.773159728050814e-15;           // 26 DBL_EPSILON
constexpr double kSafety = 0.9;
constexpr double kLargestShrinkAt = 43046721.0;  // 9^8: below it 0.9 / esttol^(1/8) > 0.1
constexpr double kGrowthFiveAt = 2.5657845139503485e-08;

template <class M, class = void>
struct can_spare : std::false_type {};
template <class M>
struct can_spare<M, std::void_t<decltype(std::declval<M&>().spared(0LL))>> : std::true_type {};

inline bool same_bits(const double* a, const double* b, std::ptrdiff_t n) {
  return std::memcmp(a, b, static_cast<std::size_t>(n) * sizeof(double)) == 0;
}

// The starts of the latest steps taken at one unchanging time, for a model that can
// spare evaluations.
class StepCycle {
 public:
  static constexpr int kMaxDim = 16;
  static constexpr int kMaxPeriod = 8;
  struct Start {
    double h;
    double y[kMaxDim];
    double k[kMaxDim];
    long long evaluations;  // what the step added to the count, once it is over
    long long calls;
  };

  // At the start of a step: the period with which (h, y, k) repeats an earlier start,
  // or 0, in which case this start is recorded.
  int at_start(double t, double h, const double* y, const double* k, std::ptrdiff_t d) {
    if (d > kMaxDim) return 0;
    if (!(recorded_ > 0 && same_bits(&t, &t_, 1))) {
      recorded_ = 0;
      t_ = t;
      if (!(have_previous_ && same_bits(&t, &previous_t_, 1))) {
        previous_t_ = t;
        have_previous_ = true;
        return 0;
      }
    }
    for (int p = 1; p <= kMaxPeriod && p <= recorded_; ++p) {
      const Start& s = start(recorded_ - p);
      if (same_bits(&s.h, &h, 1) && same_bits(s.y, y, d) && same_bits(s.k, k, d)) return p;
    }
    Start& s = start(recorded_);
    s.h = h;
    std::memcpy(s.y, y, static_cast<std::size_t>(d) * sizeof(double));
    std::memcpy(s.k, k, static_cast<std::size_t>(d) * sizeof(double));
    s.evaluations = -1;
    ++recorded_;
    return 0;
  }
  // At the end of a step that was recorded.
  void at_end(long long evaluations, long long calls) {
    if (recorded_ > 0 && start(recorded_ - 1).evaluations < 0) {
      start(recorded_ - 1).evaluations = evaluations;
      start(recorded_ - 1).calls = calls;
    }
  }
  // Start j (0 <= j < p) of the cycle of period p found now.
  const Start& cycle(int p, int j) const { return starts_[(recorded_ - p + j) % kMaxPeriod]; }

 private:
  Start& start(int index) { return starts_[index % kMaxPeriod]; }
  Start starts_[kMaxPeriod];
  int recorded_ = 0;
  double t_ = 0.0;
  double previous_t_ = 0.0;
  bool have_previous_ = false;
};
}  // namespace detail

template <class Model>
void rkf78_step(Model& model, const double* y, double t, double h, double* ynew, int dim,
                double* K) {
  const std::ptrdiff_t d = dim;
  for (std::ptrdiff_t j = 1; j <= 12; ++j) {
    const double* beta = RKFb[j];
    for (std::ptrdiff_t k = 0; k < d; ++k) {
      double sum = 0.0;
      for (std::ptrdiff_t l = 0; l < j; ++l) sum += beta[l] * K[l * d + k];
      ynew[k] = y[k] + h * sum;
    }
    model(t + RKFa[j] * h, ynew, K + j * d);
  }
  for (std::ptrdiff_t k = 0; k < d; ++k) {
    double sum = 0.0;
    for (std::ptrdiff_t j = 0; j <= 12; ++j) sum += RKFc[j] * K[j * d + k];
    ynew[k] = y[k] + h * sum;
  }
}

template <class Model, class Observer>
int rkf78_integrate(Model& model, double* y, double& t, double tout, int dim, double relTol,
                    const double* absTol, int& flag, double* work, int maxEval,
                    Observer& observer) {
  // Nothing to do: the state already sits at tout. The doubled flag wraps like two's
  // complement for entry values beyond half the int range (such values are invalid
  // anyway, and this branch validates nothing).
  if (std::fabs(t - tout) < detail::kEmptyInterval) {
    flag = static_cast<int>(static_cast<unsigned int>(flag) * 2u);
    t = tout;
    return observer.land(t, y, dim);
  }
  if (dim < 1 || relTol < 0.0) {
    flag = 8;
    return 0;
  }
  const double aeMin = ArrayMin(absTol, dim);
  if (flag > 8 || flag < -8 || flag == 0 || aeMin < 0.0) {
    flag = 8;
    return 0;
  }
  // A restart that is not fresh: continue in one-step mode on the stored derivative.
  if (flag == 3 || flag == 4 || flag == 2 || flag == -2) flag = 0;
  if (relTol < detail::kRelTolFloor) {
    flag = 3;
    return 0;
  }

  const std::ptrdiff_t d = dim;
  double* K0 = work;
  double* trial = work + 13 * d;
  // Counted in 64 bits: the budget test comes only at a new step, so rejected retries
  // keep counting and an int counter could pass its range under a budget near INT_MAX.
  long long n = 0;
  if (flag == 1 || flag == -1) {
    model(t, y, K0);
    n = 1;
    if (std::fabs(t - tout) < detail::kEmptyInterval) {
      flag = 2;
      return 0;
    }
  }

  // Initial step: the largest for which the first-order term alone stays within each
  // component's tolerance.
  double dt = tout - t;
  double h = std::fabs(dt);
  double tol = 0.0;
  for (std::ptrdiff_t k = 0; k < d; ++k) {
    tol = Max(relTol * std::fabs(y[k]), absTol[k]);
    if (tol > 0.0 && std::fabs(K0[k]) * std::pow(h, 8.0) > tol) {
      h = std::pow(tol / std::fabs(K0[k]), 0.125);
    }
  }
  if (tol <= 0.0) h = 0.0;
  h = Max(h, detail::kU26 * Max(std::fabs(t), std::fabs(dt)));
  h = CopySign(h, dt);

  const double scale = 2.0 / relTol;

  // The whole interval is below the resolution of t: one Euler step lands on tout.
  if (std::fabs(dt) <= detail::kU26 * std::fabs(t)) {
    for (std::ptrdiff_t k = 0; k < d; ++k) y[k] = y[k] + dt * K0[k];
    model(tout, y, K0);
    t = tout;
    flag = 2;
    return 0;
  }

  constexpr bool kMaySpare = detail::can_spare<Model>::value;
  detail::StepCycle cycle;
  int lines = 0;
  for (;;) {
    const long long n_start = n;
    long long trials = 0;
    if constexpr (kMaySpare) {
      if (const int p = cycle.at_start(t, h, y, K0, d)) {
        // Every further step repeats the last p, up to the budget.
        for (int j = 0;; j = (j + 1) % p) {
          observer.tick();
          if (n > maxEval) {
            flag = 4;
            return lines;
          }
          const auto& step = cycle.cycle(p, j);
          n += step.evaluations;
          model.spared(step.calls);
          std::memcpy(y, cycle.cycle(p, (j + 1) % p).y,
                      static_cast<std::size_t>(d) * sizeof(double));
          lines += observer.step(t, y, dim);
        }
      }
    }
    dt = tout - t;
    bool output = false;
    if (std::fabs(dt) < 2.0 * std::fabs(h)) {
      if (std::fabs(dt) <= std::fabs(h)) {
        h = dt;
        output = true;
      } else {
        h = dt / 2.0;
      }
    }
    observer.tick();
    if (n > maxEval) {
      flag = 4;
      return lines;
    }
    const double hmin = detail::kU26 * std::fabs(t);
    bool hfailed = false;
    double esttol = 0.0;
    for (;;) {
      rkf78_step(model, y, t, h, trial, dim, K0);
      n += 8;
      ++trials;
      double eeoet = 0.0;
      for (std::ptrdiff_t k = 0; k < d; ++k) {
        const double et = std::fabs(trial[k]) + std::fabs(y[k]) + aeMin * scale;
        if (et <= 0.0) {
          flag = 5;
          return lines;
        }
        const double ee = std::fabs(RKF78ErrorTerm(static_cast<int>(k), dim, K0));
        eeoet = Max(eeoet, ee / et);
      }
      esttol = std::fabs(h) * eeoet * scale;
      if (!(esttol > 1.0)) break;  // a NaN estimate accepts the step
      hfailed = true;
      output = false;
      const double s =
          esttol < detail::kLargestShrinkAt ? detail::kSafety / std::pow(esttol, 0.125) : 0.1;
      h = s * h;
      if (std::fabs(h) <= hmin) {
        flag = 6;
        return lines;
      }
    }

    t = t + h;
    for (std::ptrdiff_t k = 0; k < d; ++k) y[k] = trial[k];
    model(t, y, K0);
    n += 1;

    // Below the threshold the growth factor is 5 rather than nearly 8.
    double s = esttol <= detail::kGrowthFiveAt ? 5.0 : detail::kSafety / std::pow(esttol, 0.125);
    if (hfailed) s = Min(s, 1.0);
    h = CopySign(Max(s * std::fabs(h), hmin), h);

    lines += observer.step(t, y, dim);
    if constexpr (kMaySpare) cycle.at_end(n - n_start, 12 * trials + 1);
    if (output) {
      t = tout;
      flag = 2;
      return lines;
    }
    if (flag <= 0) {
      flag = -2;
      return lines;
    }
  }
}

}  // namespace RK
