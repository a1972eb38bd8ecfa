#include "lowthrust/rk4.h"

#include <cmath>
#include <cstddef>

namespace RK {

void RK4(DerivFn model, const double* y, const double* para, double t, double h, double* ynew,
         int dim, double* work) {
  const std::ptrdiff_t d = dim > 0 ? dim : 0;
  double* stage = work;
  double* K = work + d;
  // ynew accumulates h K1 + 2h K2 + 2h K3 until the last stage.
  model(t, y, K, para);
  for (std::ptrdiff_t k = 0; k < d; ++k) {
    ynew[k] = h * K[k];
    stage[k] = y[k] + (h / 2.0) * K[k];
  }
  model(t + h / 2.0, stage, K, para);
  for (std::ptrdiff_t k = 0; k < d; ++k) {
    ynew[k] += 2.0 * h * K[k];
    stage[k] = y[k] + (h / 2.0) * K[k];
  }
  model(t + h / 2.0, stage, K, para);
  for (std::ptrdiff_t k = 0; k < d; ++k) {
    ynew[k] += 2.0 * h * K[k];
    stage[k] = y[k] + h * K[k];
  }
  model(t + h, stage, K, para);
  for (std::ptrdiff_t k = 0; k < d; ++k) ynew[k] = y[k] + (ynew[k] + h * K[k]) / 6.0;
}

int RK4(DerivFn model, double* y, const double* para, double& t, double tout, double h, int dim,
        double* work, std::FILE* outFile) {
  const std::ptrdiff_t d = dim > 0 ? dim : 0;
  const double step = tout < t ? -h : h;
  const double H = std::fabs(step);
  double* ynew = work + 2 * d;
  int lines = 0;
  for (;;) {
    const double rem = std::fabs(t - tout);
    // A step that cannot bring t closer to tout (zero, pointing away from tout, or below
    // the resolution of t) would repeat for ever; the remainder is then taken at once.
    const bool advances = (tout < t ? step < 0.0 : step > 0.0) && t + step != t;
    const bool last = !(H < rem) || !advances;
    const double this_step = last ? tout - t : step;
    RK4(model, y, para, t, this_step, ynew, dim, work);
    for (std::ptrdiff_t k = 0; k < d; ++k) y[k] = ynew[k];
    t = t + this_step;
    if (outFile != nullptr) {
      std::fprintf(outFile, "%22.14e", t);
      for (std::ptrdiff_t k = 0; k < d; ++k) std::fprintf(outFile, "%24.14e", y[k]);
      std::fprintf(outFile, "\n");
      std::fflush(outFile);
      if (lines < 2147483647) ++lines;
    }
    if (last) return lines;
  }
}

}  // namespace RK
