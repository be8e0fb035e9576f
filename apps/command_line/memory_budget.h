// How much of the machine's memory a program's volumes may take.
#pragma once

#include <algorithm>
#include <cstdint>

#include "command_line/platform.h"
#include "data/volume_reader.h"

namespace oct::app {

// A third for the volume, a third for what is laid over it, the rest for the driver and all others.
inline VolumeLimits within_memory(VolumeLimits limits) {
  if (const std::uint64_t memory = physical_memory()) limits.bytes = std::min(limits.bytes, memory / 3);
  return limits;
}

}  // namespace oct::app
