// Arrays in .npy files: 2-D (one image) or 3-D (frames along the first axis).
#pragma once

#include "image.h"
#include "input_file.h"

namespace oct::app {

Raster readNpy(InputFile& file, const FrameChoice& choice);

}  // namespace oct::app
