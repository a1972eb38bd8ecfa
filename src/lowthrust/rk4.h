// Classical fixed-step fourth-order Runge-Kutta.
#pragma once

#include <cstdio>

#include "lowthrust/rkf78.h"

namespace RK {

// One step from (t, y) into ynew; work holds 2 * dim doubles.
void RK4(DerivFn model, const double* y, const double* para, double t, double h, double* ynew,
         int dim, double* work);
// Runs from t to tout with step h (last step the remainder); work holds 3 * dim doubles.
// Returns the number of lines written to outFile (which may be null).
int RK4(DerivFn model, double* y, const double* para, double& t, double tout, double h, int dim,
        double* work, std::FILE* outFile);

}  // namespace RK
