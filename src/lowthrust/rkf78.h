// Adaptive Runge-Kutta-Fehlberg 7(8) integration with step-size control.
#pragma once

#include <cstdio>

#include "lowthrust/rkf78_coefficients.h"

namespace RK {

// Derivative function: writes dy = f(t, y); para is the caller's parameter block.
using DerivFn = void (*)(double t, const double* y, double* dy, const double* para);

// Integrates y from t towards tout. flag on entry: 1 / -1 fresh start in interval /
// one-step mode; on return 2 reached, -2 one step taken, 3 relTol too small, 4 budget
// exceeded, 5 error scale not positive, 6 accuracy unattainable, 8 invalid input.
// work holds 14 * dim doubles; block 0 keeps f(t, y) between calls. Returns the number
// of lines written to outFile (which may be null).
int RKF78(DerivFn model, double* y, const double* para, double& t, double tout, int dim,
          double relTol, const double* absTol, int& flag, double* work, int maxEval,
          std::FILE* outFile);
// One Fehlberg 7(8) step of size h; K block 0 must hold f(t, y). Twelve evaluations.
void RKF78Step(DerivFn model, const double* y, const double* para, double t, double h, double* ynew,
               int dim, double* K);

}  // namespace RK
