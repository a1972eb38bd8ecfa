// The Fehlberg 7(8) integration loop, written once for any right-hand side and any
// observer of the accepted steps; RK::RKF78 is this loop over a derivative function and
// an output file. The arithmetic is the same whatever the model, so every instance
// gives the same bits for the same right-hand side.
//
// Model: void operator()(double t, const double* y, double* dy).
// Observer: int land(t, y, dim) when the interval is empty (returns the lines written),
// int step(t, y, dim) after each accepted step (returns the lines written), void tick()
// before each new step (it may throw to abandon the integration).
#pragma once

#include <cmath>
#include <cstddef>

#include "lowthrust/rkf78.h"

namespace RK {
namespace detail {
constexpr double kEmptyInterval = 1e-14;
constexpr double kRelTolFloor = 1.4440892098500627e-15;  // 2 DBL_EPSILON + 1e-15
constexpr double kU26 = 5.773159728050814e-15;           // 26 DBL_EPSILON
constexpr double kSafety = 0.9;
constexpr double kLargestShrinkAt = 43046721.0;  // 9^8: below it 0.9 / esttol^(1/8) > 0.1
constexpr double kGrowthFiveAt = 2.5657845139503485e-08;
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

  int lines = 0;
  for (;;) {
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
      const double s = esttol < detail::kLargestShrinkAt ? detail::kSafety / std::pow(esttol, 0.125) : 0.1;
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
