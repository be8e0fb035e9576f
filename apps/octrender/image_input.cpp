#include "image_input.h"

#include <string>
#include <string_view>
#include <utility>

#include "failure.h"
#include "input_file.h"
#include "npy_reader.h"
#include "png_reader.h"
#include "tiff_reader.h"

namespace oct::app {
namespace {

using namespace std::string_view_literals;

struct Format {
  std::string_view firstBytes;
  Raster (*read)(InputFile&, const FrameChoice&);
};

constexpr Format kFormats[] = {
    {"\x93NUMPY"sv, readNpy}, {"\x89PNG\r\n\x1a\n"sv, readPng},
    {"II\x2a\0"sv, readTiff}, {"MM\0\x2a"sv, readTiff},
    {"II\x2b\0"sv, readTiff}, {"MM\0\x2b"sv, readTiff},  // TIFF with 64-bit offsets
};

Raster readRaster(InputFile& file, const FrameChoice& choice) {
  const std::string start = file.start(8);
  for (const Format& format : kFormats) {
    if (start.starts_with(format.firstBytes)) return format.read(file, choice);
  }
  throw inputFailure(file.path(), "not a .npy, PNG or TIFF file");
}

}  // namespace

LoadedImage loadImage(const std::filesystem::path& path, const FrameChoice& choice, bool rowsAreAscans) {
  InputFile file(path);
  Raster raster = readRaster(file, choice);
  LoadedImage loaded{{}, raster.frame, raster.frameCount};
  loaded.image = toImage(std::move(raster), rowsAreAscans);
  return loaded;
}

}  // namespace oct::app
