#include "data/file_errors.h"
#include "data/formats/tiff_reader.h"

namespace oct::app {

Raster readTiff(InputFile& file, const FrameChoice&) {
  throw ReadError(file.path(), "TIFF input needs the Linux build");
}

void readTiffFrames(InputFile& file, const TakeRaster&) {
  readTiff(file, {});
}

}  // namespace oct::app
