// What the rays of a frame may jump over.
#pragma once

#include "volume/frame/volume_frame.h"
#include "volume/skipping/visibility.h"

namespace oct {

// Makes the tables ready; none where skipping might change the picture. Leaves no 3-D texture at unit 0. Throws what
// OpenGL refuses.
Visibility prepare_empty_space(const VolumeFrame& frame);

// Gives the tables to the program that is in use.
void set_empty_space(const RaycastingProgram::RayLocations& at, const VolumeFrame& frame,
                     const Visibility& visibility);

}  // namespace oct
