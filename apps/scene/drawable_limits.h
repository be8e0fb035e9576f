// How large volumes may be for the OpenGL driver in use.
#pragma once

#include "data/volume_reader.h"

namespace oct::app {

// Of the context that is current; where none is, of one that is made for the question. Asked once.
VolumeLimits drawable_limits();

}  // namespace oct::app
