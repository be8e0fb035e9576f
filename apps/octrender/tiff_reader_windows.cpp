#include "failure.h"
#include "tiff_reader.h"

namespace oct::app {

Raster readTiff(InputFile& file, const FrameChoice&) {
  throw inputFailure(file.path(), "TIFF input needs the Linux build");
}

void readTiffFrames(InputFile& file, const TakeRaster&) {
  readTiff(file, {});
}

}  // namespace oct::app
