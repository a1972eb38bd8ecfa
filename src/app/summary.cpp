#include "app/summary.h"

namespace kavren {

void print_summary(std::ostream& out, int num_ships, std::size_t num_mined, double total_mass) {
  out << "Check successfully!" << std::endl;
  out << "The number of mining ships is " << num_ships << " ;" << std::endl;
  out << "The number of mined asteroids is " << num_mined << " ;" << std::endl;
  out << "The total resource mass is " << total_mass << " kg." << std::endl;
}

}  // namespace kavren
