// How large volumes may be for the OpenGL driver in use.
#pragma once

#include <cstdint>

#include "data/volume_reader.h"

namespace oct::app {

// Of the context that is current; where none is, of one that is made for the question. Asked once.
VolumeLimits drawable_limits();

// What is left of the limits for a volume of so many voxels. Drivers tell by nothing but the making of a texture how large one may
// be, so that only volumes that would need a large one ask for that. From any thread; its context stays current.
VolumeLimits accepted_limits(VolumeLimits limits, std::uint64_t voxels);

}  // namespace oct::app
