#include "data/image_reader.h"

#include <string>
#include <string_view>
#include <utility>

#include "data/file_errors.h"
#include "data/formats/input_file.h"
#include "data/formats/npy_reader.h"
#include "data/formats/png_reader.h"
#include "data/formats/tiff_reader.h"

namespace oct::app {
namespace {

using namespace std::string_view_literals;

struct Format {
  std::string_view firstBytes;
  Raster (*read)(InputFile&, const FrameChoice&, const ProgressFunction&);
  void (*readAll)(InputFile&, const TakeRaster&, const ProgressFunction&);
};

void readNpyArray(InputFile& file, const TakeRaster& take, const ProgressFunction& progress) {
  readNpyFrames(file, take, progress);
}

Raster readPngImage(InputFile& file, const FrameChoice& choice, const ProgressFunction&) {
  return readPng(file, choice);
}

void readPngFrame(InputFile& file, const TakeRaster& take, const ProgressFunction&) {
  take(readPng(file, {}));
}

Raster readTiffPage(InputFile& file, const FrameChoice& choice, const ProgressFunction&) {
  return readTiff(file, choice);
}

void readTiffPages(InputFile& file, const TakeRaster& take, const ProgressFunction&) {
  readTiffFrames(file, take);
}

constexpr Format kFormats[] = {
    {"\x93NUMPY"sv, readNpy, readNpyArray},      {"\x89PNG\r\n\x1a\n"sv, readPngImage, readPngFrame},
    {"II\x2a\0"sv, readTiffPage, readTiffPages}, {"MM\0\x2a"sv, readTiffPage, readTiffPages},
    {"II\x2b\0"sv, readTiffPage, readTiffPages},  // TIFF with 64-bit offsets
    {"MM\0\x2b"sv, readTiffPage, readTiffPages},
};

const Format& formatOf(InputFile& file) {
  const std::string start = file.start(8);
  for (const Format& format : kFormats) {
    if (start.starts_with(format.firstBytes)) return format;
  }
  throw ReadError(file.path(), "not a .npy, PNG or TIFF file");
}

LoadedImage loaded(Raster raster, bool rowsAreAscans) {
  LoadedImage result{{}, raster.frame, raster.frameCount};
  result.image = toImage(std::move(raster), rowsAreAscans);
  return result;
}

}  // namespace

LoadedImage loadImage(const std::filesystem::path& path, const FrameChoice& choice, bool rowsAreAscans,
                      const ProgressFunction& progress) {
  InputFile file(path);
  return loaded(formatOf(file).read(file, choice, progress), rowsAreAscans);
}

void loadImages(const std::filesystem::path& path, bool rowsAreAscans,
                const std::function<void(LoadedImage)>& take, const ProgressFunction& progress) {
  InputFile file(path);
  const auto takeRaster = [&](Raster raster) {
    progress(raster.frame * raster.samples.size(), raster.frameCount * raster.samples.size());
    take(loaded(std::move(raster), rowsAreAscans));
  };
  formatOf(file).readAll(file, takeRaster, progress);
}

}  // namespace oct::app
