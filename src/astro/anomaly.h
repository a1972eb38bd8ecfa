// Conversions between true (f), eccentric (E, or hyperbolic H) and mean (M) anomaly.
// Radians throughout. The first argument is set to 1 on success and 0 on failure; on
// failure the input angle is returned. e < 0 is invalid, e == 1 exactly passes the
// angle through unchanged (flag 1).
#pragma once

double E2f(int& flag, double E, double e);
double E2M(int& flag, double E, double e);
double f2E(int& flag, double f, double e);
// Kepler's equation by a fourth-order correction; fails only when the iteration
// budget ran out with the last step still at least 5 * epsilon.
double M2E(int& flag, double M, double e, int MaxIter, double epsilon);
// M0 + sqrt(mu / a^3) * dt; no reduction to one turn.
double M0dt2Mt(double M0, double mu, double a, double dt);
