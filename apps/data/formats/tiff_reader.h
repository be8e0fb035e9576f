// Gray TIFF images of 8 or 16 bits or 32-bit floats; each page is a frame.
#pragma once

#include "data/formats/input_file.h"
#include "data/formats/raster.h"

namespace oct::app {

Raster read_tiff(InputFile& file, const FrameChoice& choice);
void read_tiff_frames(InputFile& file, const TakeRaster& take);  // every page

}  // namespace oct::app
