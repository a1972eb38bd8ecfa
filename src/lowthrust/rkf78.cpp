#include "lowthrust/rkf78.h"

#include <cmath>
#include <cstddef>

#include "lowthrust/rkf78_loop.h"

namespace RK {

namespace {

void write_line(std::FILE* out, double t, const double* y, int dim) {
  std::fprintf(out, "%22.14e", t);
  for (int k = 0; k < dim; ++k) std::fprintf(out, "%24.14e", y[k]);
  std::fprintf(out, "\n");
  std::fflush(out);
}

// A derivative function with its parameter block.
struct FunctionModel {
  DerivFn f;
  const double* para;
  void operator()(double t, const double* y, double* dy) const { f(t, y, dy, para); }
};

// Writes every accepted state to the output file, when there is one.
struct FileObserver {
  std::FILE* out;
  int land(double t, const double* y, int dim) const {
    if (out != nullptr) write_line(out, t, y, dim);
    return 1;
  }
  int step(double t, const double* y, int dim) const {
    if (out == nullptr) return 0;
    write_line(out, t, y, dim);
    return 1;
  }
  void tick() const {}
};

}  // namespace

void RKF78Step(DerivFn model, const double* y, const double* para, double t, double h, double* ynew,
               int dim, double* K) {
  FunctionModel m{model, para};
  rkf78_step(m, y, t, h, ynew, dim, K);
}

int RKF78(DerivFn model, double* y, const double* para, double& t, double tout, int dim,
          double relTol, const double* absTol, int& flag, double* work, int maxEval,
          std::FILE* outFile) {
  FunctionModel m{model, para};
  FileObserver observer{outFile};
  return rkf78_integrate(m, y, t, tout, dim, relTol, absTol, flag, work, maxEval, observer);
}

}  // namespace RK
