// Loads an image from any of the known file formats. The first bytes tell the format, not the name.
#pragma once

#include <cstddef>
#include <filesystem>
#include <functional>

#include "data/formats/raster.h"
#include "data/image.h"
#include "data/progress_function.h"

namespace oct::app {

struct LoadedImage {
  Image image;
  std::size_t frame = 0;
  std::size_t frame_count = 1;
};

LoadedImage load_image(const std::filesystem::path& path, const FrameChoice& choice, bool rows_are_ascans,
                       const ProgressFunction& progress = no_progress);

// Every frame of the file, which is opened once.
void load_images(const std::filesystem::path& path, bool rows_are_ascans,
                 const std::function<void(LoadedImage)>& take,
                 const ProgressFunction& progress = no_progress);

}  // namespace oct::app
