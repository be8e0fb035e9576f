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
  void (*readAll)(InputFile&, const TakeRaster&);
};

void readAllOfNpy(InputFile& file, const TakeRaster& take) {
  readNpyFrames(file, take);
}

void readAllOfPng(InputFile& file, const TakeRaster& take) {
  take(readPng(file, {}));
}

constexpr Format kFormats[] = {
    {"\x93NUMPY"sv, readNpy, readAllOfNpy},   {"\x89PNG\r\n\x1a\n"sv, readPng, readAllOfPng},
    {"II\x2a\0"sv, readTiff, readTiffFrames}, {"MM\0\x2a"sv, readTiff, readTiffFrames},
    {"II\x2b\0"sv, readTiff, readTiffFrames},  // TIFF with 64-bit offsets
    {"MM\0\x2b"sv, readTiff, readTiffFrames},
};

const Format& formatOf(InputFile& file) {
  const std::string start = file.start(8);
  for (const Format& format : kFormats) {
    if (start.starts_with(format.firstBytes)) return format;
  }
  throw inputFailure(file.path(), "not a .npy, PNG or TIFF file");
}

LoadedImage loaded(Raster raster, bool rowsAreAscans) {
  LoadedImage result{{}, raster.frame, raster.frameCount};
  result.image = toImage(std::move(raster), rowsAreAscans);
  return result;
}

}  // namespace

LoadedImage loadImage(const std::filesystem::path& path, const FrameChoice& choice, bool rowsAreAscans) {
  InputFile file(path);
  return loaded(formatOf(file).read(file, choice), rowsAreAscans);
}

void loadImages(const std::filesystem::path& path, bool rowsAreAscans,
                const std::function<void(LoadedImage)>& take) {
  InputFile file(path);
  formatOf(file).readAll(file, [&](Raster raster) { take(loaded(std::move(raster), rowsAreAscans)); });
}

}  // namespace oct::app
