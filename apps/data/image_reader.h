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
  std::size_t frameCount = 1;
};

LoadedImage loadImage(const std::filesystem::path& path, const FrameChoice& choice, bool rowsAreAscans,
                      const ProgressFunction& progress = noProgress);

// Every frame of the file, which is opened once.
void loadImages(const std::filesystem::path& path, bool rowsAreAscans,
                const std::function<void(LoadedImage)>& take, const ProgressFunction& progress = noProgress);

}  // namespace oct::app
