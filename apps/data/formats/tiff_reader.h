// Gray TIFF images of 8 or 16 bits or 32-bit floats; each page is a frame.
#pragma once

#include "data/formats/input_file.h"
#include "data/formats/raster.h"

namespace oct::app {

Raster readTiff(InputFile& file, const FrameChoice& choice);
void readTiffFrames(InputFile& file, const TakeRaster& take);  // every page

}  // namespace oct::app
