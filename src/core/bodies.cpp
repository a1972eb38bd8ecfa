#include "kavren/bodies.h"

#include "astro/ephemeris.h"

namespace kavren {

bool planet_state(int id, double mjd, double* rv) {
  if (id != -2 && id != -3 && id != -4 && id != 0) return false;
  int flag = 0;
  body_state(flag, rv, id, mjd, nullptr);
  return flag == 1;
}

}  // namespace kavren
