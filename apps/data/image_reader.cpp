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
  std::string_view first_bytes;
  Raster (*read)(InputFile&, const FrameChoice&, const ProgressFunction&);
  void (*read_all)(InputFile&, const TakeRaster&, const ProgressFunction&);
};

void read_npy_array(InputFile& file, const TakeRaster& take, const ProgressFunction& progress) {
  read_npy_frames(file, take, progress);
}

Raster read_png_image(InputFile& file, const FrameChoice& choice, const ProgressFunction&) {
  return read_png(file, choice);
}

void read_png_frame(InputFile& file, const TakeRaster& take, const ProgressFunction&) {
  take(read_png(file, {}));
}

Raster read_tiff_page(InputFile& file, const FrameChoice& choice, const ProgressFunction&) {
  return read_tiff(file, choice);
}

void read_tiff_pages(InputFile& file, const TakeRaster& take, const ProgressFunction&) {
  read_tiff_frames(file, take);
}

constexpr Format formats[] = {
    {"\x93NUMPY"sv, read_npy, read_npy_array},       {"\x89PNG\r\n\x1a\n"sv, read_png_image, read_png_frame},
    {"II\x2a\0"sv, read_tiff_page, read_tiff_pages}, {"MM\0\x2a"sv, read_tiff_page, read_tiff_pages},
    {"II\x2b\0"sv, read_tiff_page, read_tiff_pages},  // TIFF with 64-bit offsets
    {"MM\0\x2b"sv, read_tiff_page, read_tiff_pages},
};

const Format& format_of(InputFile& file) {
  const std::string start = file.start(8);
  for (const Format& format : formats) {
    if (start.starts_with(format.first_bytes)) return format;
  }
  throw ReadError(file.path(), "not a .npy, PNG or TIFF file");
}

LoadedImage loaded(Raster raster, bool rows_are_ascans) {
  LoadedImage result{{}, raster.frame, raster.frame_count};
  result.image = to_image(std::move(raster), rows_are_ascans);
  return result;
}

}  // namespace

LoadedImage load_image(const std::filesystem::path& path, const FrameChoice& choice, bool rows_are_ascans,
                       const ProgressFunction& progress) {
  InputFile file(path);
  return loaded(format_of(file).read(file, choice, progress), rows_are_ascans);
}

void load_images(const std::filesystem::path& path, bool rows_are_ascans,
                 const std::function<void(LoadedImage)>& take, const ProgressFunction& progress) {
  InputFile file(path);
  const auto take_raster = [&](Raster raster) {
    progress(raster.frame * raster.samples.size(), raster.frame_count * raster.samples.size());
    take(loaded(std::move(raster), rows_are_ascans));
  };
  format_of(file).read_all(file, take_raster, progress);
}

}  // namespace oct::app
