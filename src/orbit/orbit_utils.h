// Orbit utilities of the toolkit: a two-body right-hand side for the integrators, and
// the first-order short-period J2 map from mean to osculating classical elements with
// its residual and inverse. None of the checks call them.
//
// Element sets here are classical elements, six doubles in this order:
//   a     semi-major axis (length unit of the parameter block, e.g. km)
//   e     eccentricity
//   i     inclination (rad)
//   RAAN  right ascension of the ascending node (rad)
//   argp  argument of periapsis (rad)
//   M     mean anomaly (rad)
// The J2 parameter block is {mu, J2, Req}: gravitational parameter (length^3/s^2), the
// dimensionless second zonal harmonic, and the body's reference radius (length unit).
//
// Mean elements are those of first-order theory: the osculating elements with the
// first-order short-period terms of J2 removed (the terms that vary with the mean
// anomaly, derived from the J2 disturbing function averaged over one revolution). The
// map keeps only those terms: it is accurate to first order in J2 and carries no
// long-period or secular part.
// Validity: elliptic orbits, 0 < e < 1. The corrections to argp and M individually grow
// like J2 (Req/p)^2 / e (their sum stays bounded), so orbits whose eccentricity is not
// well above J2 (Req/p)^2 are outside the useful range, and e = 0 is refused. The short-period
// terms hold at every inclination; the critical inclination only troubles the long-period terms,
// which are not modelled here. Angles are not reduced to one turn.
#pragma once

// Two-body acceleration in the integrators' derivative signature (RK::DerivFn).
// y = (x, y, z, vx, vy, vz), para[0] = mu; t is unused. At the origin the division by
// r^3 = 0 gives infinities or NaN, no error.
void DynFun(double t, const double* y, double* dy, const double* para);

// Osculating elements of the mean set `mean` (order above) under J2, to first order.
// para = {mu, J2, Req}. Flag 1 on success; flag 0 and osc untouched when an input is not
// finite, mu <= 0, a <= 0, or e outside (0, 1). osc must not alias mean.
void M2O2(int& flag, double* osc, const double* mean, const double* para);

// Residual of a trial mean set for a root finder: res = M2O2(mean) - target, where
// para = {mu, J2, Req, target a, e, i, RAAN, argp, M} (9 doubles). The angle components
// (RAAN, argp, M) of the residual are reduced to (-pi, pi], so a target given in any turn
// is matched. Flag and failure as for M2O2 (res untouched on failure).
void myfun(int& flag, double* res, const double* mean, const double* para);

// Signature of a residual function as myfun has it.
using ResidualFn = void (*)(int& flag, double* res, const double* x, const double* para);

// Fixed-point root finder for residuals of the form G(x) - target with G close to the
// identity: x <- x - res(x), starting from x as given, until every component of the step
// is within tol[k] in absolute value (tol has dim entries). Flag 1 on convergence with x
// the root; flag 0 and x untouched when fn fails, a step is not finite, or maxIter steps
// do not converge. dim at most 16.
void FixedPointSolve(int& flag, double* x, ResidualFn fn, const double* para, int dim,
                     const double* tol, int maxIter);

// Mean elements whose M2O2 image is the osculating set osc: FixedPointSolve over myfun
// starting from osc. Convergence is judged on a relative to a and on every other
// component absolutely, each against tol. Flag 0 and mean untouched on failure. The
// angles of the result lie within about the short-period amplitude of those of osc.
void O2M2(int& flag, double* mean, const double* osc, const double* para, double tol, int maxIter);
