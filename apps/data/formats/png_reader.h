// PNG images of 8 or 16 bits: gray values as they are, colours as their luminance, transparency ignored.
#pragma once

#include "data/formats/input_file.h"
#include "data/formats/raster.h"

namespace oct::app {

Raster read_png(InputFile& file, const FrameChoice& choice);

}  // namespace oct::app
