#include "app/driver.h"

int main(int argc, char**) { return kavren::run_checker(argc); }
