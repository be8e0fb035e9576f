/* The public headers must be usable from C99; the tests in C++ call this to know that it was linked. */
#include "oct_device/oct_device.h"
#include "oct_simulator/oct_simulator.h"

int object_count_seen_from_c(void);

int object_count_seen_from_c(void) {
  return getSimulatedObjectCount();
}
