#include "data/formats/png_reader.h"

#include <climits>
#include <string>
#include <utility>

#include <stb/stb_image.h>

#include "data/file_errors.h"

namespace oct::app {
namespace {

template <class T>
using Pixels = std::unique_ptr<T, decltype(&stbi_image_free)>;

class PngReader : public FrameReader {
 public:
  explicit PngReader(std::shared_ptr<InputFile> file) : file_(std::move(file)) {
    if (file_->size() > INT_MAX) throw ReadError(file_->path(), "PNG files over 2 GiB are not supported");
  }

  std::size_t frame_count() const override { return 1; }

  Raster read(std::size_t, const ProgressFunction&) override {
    const std::string content = file_->whole();
    const auto* bytes = reinterpret_cast<const stbi_uc*>(content.data());
    const int size = static_cast<int>(content.size());
    int width = 0, height = 0, channels = 0;
    if (!stbi_info_from_memory(bytes, size, &width, &height, &channels)) throw damaged();
    check_raster_size(file_->path(), static_cast<std::uint64_t>(height), static_cast<std::uint64_t>(width));
    Raster raster{static_cast<std::size_t>(height), static_cast<std::size_t>(width), {}};
    // Deflate makes at most 1032 bytes of one, and a byte has at most eight pixels.
    if (raster.rows * raster.columns / (8 * 1032) > content.size()) {
      throw ReadError(file_->path(), "not a readable PNG image: the file is truncated");
    }
    const auto take = [&](const auto* pixels) {
      if (!pixels) throw damaged();
      raster.samples.assign(pixels, pixels + raster.rows * raster.columns);
    };
    constexpr int gray = 1;
    if (stbi_is_16_bit_from_memory(bytes, size)) {
      const Pixels<stbi_us> pixels(stbi_load_16_from_memory(bytes, size, &width, &height, &channels, gray),
                                   stbi_image_free);
      take(pixels.get());
    } else {
      const Pixels<stbi_uc> pixels(stbi_load_from_memory(bytes, size, &width, &height, &channels, gray),
                                   stbi_image_free);
      take(pixels.get());
    }
    return raster;
  }

 private:
  ReadError damaged() const {
    return {file_->path(), std::string("not a readable PNG image: ") + stbi_failure_reason()};
  }

  const std::shared_ptr<InputFile> file_;
};

}  // namespace

Picture read_png_picture(const std::filesystem::path& path) {
  InputFile file(path);
  if (file.size() > INT_MAX) throw ReadError(path, "PNG files over 2 GiB are not supported");
  const std::string content = file.whole();
  const auto* bytes = reinterpret_cast<const stbi_uc*>(content.data());
  const int size = static_cast<int>(content.size());
  int width = 0, height = 0, channels = 0;
  const auto damaged = [&] {
    return ReadError(path, std::string("not a readable PNG picture: ") + stbi_failure_reason());
  };
  if (!stbi_info_from_memory(bytes, size, &width, &height, &channels)) throw damaged();
  check_raster_size(path, static_cast<std::uint64_t>(height), static_cast<std::uint64_t>(width));
  // Gray with alpha has two channels.
  Picture picture{
      {static_cast<unsigned>(width), static_cast<unsigned>(height)}, {}, channels % 2 == 0 ? 4U : 3U};
  const Pixels<stbi_uc> pixels(
      stbi_load_from_memory(bytes, size, &width, &height, &channels, static_cast<int>(picture.channels)),
      stbi_image_free);
  if (!pixels) throw damaged();
  picture.pixels.assign(
      pixels.get(), pixels.get() + std::size_t{picture.size.width} * picture.size.height * picture.channels);
  return picture;
}

std::unique_ptr<FrameReader> open_png(std::shared_ptr<InputFile> file) {
  return std::make_unique<PngReader>(std::move(file));
}

}  // namespace oct::app
