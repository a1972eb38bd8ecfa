// Two-body transfer between two positions in a given time (the boundary-value problem of
// a coast arc), solved in universal variables for the single-revolution prograde arc.
#pragma once

namespace synth {

// Velocities v1 at r1 and v2 at r2 (km/s) of the prograde arc about the Sun that leaves r1
// and reaches r2 (km) after tof seconds without completing a revolution. False when no
// such arc exists (non-positive time, coincident or collinear positions).
bool lambert(const double* r1, const double* r2, double tof, double* v1, double* v2);

// Universal-variable functions C(z) and S(z) (Stumpff), exposed for the self-check.
double stumpff_c(double z);
double stumpff_s(double z);

}  // namespace synth
