// The coefficients of the Runge-Kutta-Fehlberg 7(8) pair and the comparisons its step
// control uses, shared by RK::RKF78 and the integration loop it runs.
#pragma once

namespace RK {

// The Fehlberg 7(8) pair: nodes alpha_j, coupling table beta_jl (row j used for l < j,
// the rest zero), eighth-order weights c_j and the weight of the error estimate. Each
// entry is the double nearest to its exact fraction.
extern const double RKFa[13];
extern const double RKFb[13][12];
extern const double RKFc[13];
constexpr double kRKF78ErrorWeight = 0.04880952380952381;  // 41/840

double Max(double a, double b);
double Min(double a, double b);
double CopySign(double a, double b);
int CopySign(int a, int b);
double ArrayMax(const double* a, int n);
double ArrayMin(const double* a, int n);

// 41/840 * (K0 + K10 - K11 - K12) for component k, zero-weight stages included.
double RKF78ErrorTerm(int k, int dim, const double* K);

}  // namespace RK
