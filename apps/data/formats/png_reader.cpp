#include "data/formats/png_reader.h"

#include <climits>
#include <memory>
#include <string>

#include <stb/stb_image.h>

#include "data/file_errors.h"

namespace oct::app {
namespace {

template <class T>
using Pixels = std::unique_ptr<T, decltype(&stbi_image_free)>;

}  // namespace

Raster read_png(InputFile& file, const FrameChoice& choice) {
  if (file.size() > INT_MAX) throw ReadError(file.path(), "PNG files over 2 GiB are not supported");
  const std::string content = file.whole();
  const auto* bytes = reinterpret_cast<const stbi_uc*>(content.data());
  const int size = static_cast<int>(content.size());
  const auto damaged = [&] {
    return ReadError(file.path(), std::string("not a readable PNG image: ") + stbi_failure_reason());
  };

  int width = 0, height = 0, channels = 0;
  if (!stbi_info_from_memory(bytes, size, &width, &height, &channels)) throw damaged();
  check_raster_size(file.path(), static_cast<std::uint64_t>(height), static_cast<std::uint64_t>(width));

  Raster raster;
  raster.frame = choose_frame(file.path(), 1, choice);
  const auto take = [&](const auto* pixels) {
    if (!pixels) throw damaged();
    raster.rows = static_cast<std::size_t>(height);
    raster.columns = static_cast<std::size_t>(width);
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

}  // namespace oct::app
