// The checks in the form of a program that owns its process: each runs on a collector that
// stops at the first violation, prints that violation's message on standard output and
// returns false, or ends the run with the message's exit status (Termination). They read
// the process-wide catalogue t_eles_asteroids. Nothing in the library calls them: the
// library's checks return their findings as values (kavren::verify).
#pragma once

#include <vector>

#include "mining/ledger.h"
#include "records/records.h"

// The process-wide catalogue rows, asteroid k in row k-1, filled by ReadAsteroidsData;
// null when no catalogue is loaded.
extern double** t_eles_asteroids;

// Loads the catalogue into t_eles_asteroids; prints ErrorA00 and ends the run with
// status 1 when the file cannot be opened.
void ReadAsteroidsData(const char* file_name);
// Releases t_eles_asteroids.
void clear_info();
// The ephemeris with the rows of t_eles_asteroids.
void getrv_stats_asteroids(int& flag, double* rv, int id, double t);

// Prints at most one message; false on the first violation. A file that cannot be
// opened ends the run with ErrorA01 (status 1).
bool ReadSolutionFile(std::vector<ShipClass>& ships, int& num_ships, const char* file_name);

// A ship against the body it meets, over t_eles_asteroids.
double get_vinf(int id, StateStruct s);
void err_state_ship(int id, StateStruct s, double& dr, double& dv);

// Walks the arc's lines; lists the opening (starts) and closing (ends) zero-thrust line of
// every thrust phase. Ends the run (status 0) at the first layout error.
bool Test_LowThrustData(BurningArc& arc, int& count, std::vector<int>& starts,
                        std::vector<int>& ends);
// Integrates the arc and compares its end; a violation ends the run.
bool Test_LowThrust_RKF78(const BurningArc& arc, int count, const std::vector<int>& starts,
                          const std::vector<int>& ends);
// reached and expected: x, y, z (km), vx, vy, vz (km/s), m (kg). Ends the run with
// Error201..203 (status 1) beyond 1000 km, 0.001 km/s or 0.001 kg.
bool Judge_rvmf(const double* reached, const double* expected, int line);
// Every arc of every ship, in order; the first failure ends the run with its status.
bool CheckBuringArc(const std::vector<ShipClass>& ships);
bool CheckBuringArc(const ShipClass& ship);
// The equations of motion in the integrators' signature, para[0] the line number the
// messages name; a ship closer to the Sun than 0.3 AU ends the run with Error101
// (status 1).
void TwoBodyDy(double t, const double* y, double* dy, const double* para);
void LowThrustDy(double t, const double* y, double* dy, const double* para);

// Gathers every rendezvous by asteroid and checks each deploy-then-collect pair.
bool CheckVisitDm(std::vector<ShipClass>& ships, int num_ships,
                  std::vector<DmStructAsteroid>& asteroid_table, std::vector<StoreDmStruct>& store);
// 1: valid pair, delivered; -1: valid pair, not delivered; 0: a rule failed (printed).
int check_DmStructAsteroid(DmStructAsteroid& record);
// Sums the collected masses into total and enforces the ship-count limit (Error301,
// status 3).
bool Test_MotherShipNum(int num_ships, const std::vector<StoreDmStruct>& store, double& total);
// Writes "./ScoreData.txt".
bool Output_Solution(const std::vector<StoreDmStruct>& store);
