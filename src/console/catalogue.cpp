// The process-wide catalogue and its loading.
#include "readers/catalogue.h"

#include <iostream>
#include <memory>
#include <string>

#include "console/checks.h"
#include "console/termination.h"
#include "readers/file_bytes.h"
#include "records/findings.h"

namespace {

// The table behind t_eles_asteroids.
std::unique_ptr<kavren::AsteroidTable> g_loaded;

}  // namespace

double** t_eles_asteroids = nullptr;

void getrv_stats_asteroids(int& flag, double* rv, int id, double t) {
  kavren::body_state(flag, rv, id, t, t_eles_asteroids);
}

void ReadAsteroidsData(const char* file_name) {
  std::string bytes;
  if (!kavren::read_file_bytes(file_name, bytes)) {
    std::cout << "ErrorA00: The file of Asteroid Data cannot be found." << std::endl;
    kavren::end_run(kavren::rule_info(kavren::Rule::catalogue_file).exit_status);
  }
  clear_info();
  g_loaded = std::make_unique<kavren::AsteroidTable>();
  kavren::read_catalogue(bytes, *g_loaded);
  t_eles_asteroids = g_loaded->mutable_rows();
}

void clear_info() {
  // The pointer is reset so that a released table is never read.
  t_eles_asteroids = nullptr;
  g_loaded.reset();
}
