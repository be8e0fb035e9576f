#include "data/formats/tiff_reader.h"

#include "data/file_errors.h"

namespace oct::app {

Raster read_tiff(InputFile& file, const FrameChoice&) {
  throw ReadError(file.path(), "TIFF input needs the Linux build");
}

void read_tiff_frames(InputFile& file, const TakeRaster&) {
  read_tiff(file, {});
}

}  // namespace oct::app
