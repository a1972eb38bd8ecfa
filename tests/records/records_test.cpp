#include <gtest/gtest.h>

#include "records/records.h"
#include "records/termination.h"

namespace {

TEST(ShipRecord, DefaultsMatchAnUnloadedShip) {
  ShipClass ship;
  EXPECT_EQ(ship.ship_id, -1);
  EXPECT_EQ(ship.final_mass, 500.0);
  EXPECT_EQ(ship.get_time_of_LRE(), 64328.0);
  EXPECT_EQ(ship.get_mass_of_resources(), 0.0);
  EXPECT_EQ(ship.get_num_miners(), 0.0);
  EXPECT_TRUE(ship.burning_arcs.empty() && ship.flybys.empty() && ship.visits.empty() &&
              ship.dm_groups.empty());
}

TEST(ShipRecord, CopiesAreDeep) {
  ShipClass ship;
  BurningArc arc;
  arc.lines = {{0.1, 0.2, 0.3}};
  arc.values = {64400.0};
  ship.burning_arcs.push_back(arc);
  ship.dm_groups.push_back({DmStructShip{7, -12.5, 64500.0}});
  ShipClass copy = ship;
  copy.burning_arcs[0].lines[0][1] = 9.0;
  copy.dm_groups[0][0].mass_change = 1.0;
  EXPECT_EQ(ship.burning_arcs[0].lines[0][1], 0.2);
  EXPECT_EQ(ship.dm_groups[0][0].mass_change, -12.5);
}

TEST(Termination, CarriesTheExitStatus) {
  try {
    kavren::end_run(3);
    FAIL() << "end_run returned";
  } catch (const kavren::Termination& end) {
    EXPECT_EQ(end.status(), 3);
  }
}

}  // namespace
