// Loads an image from any of the known file formats. The first bytes tell the format, not the name.
#pragma once

#include <cstddef>
#include <filesystem>
#include <functional>

#include "image.h"

namespace oct::app {

struct LoadedImage {
  Image image;
  std::size_t frame = 0;
  std::size_t frameCount = 1;
};

LoadedImage loadImage(const std::filesystem::path& path, const FrameChoice& choice, bool rowsAreAscans);

// Every frame of the file, which is opened once.
void loadImages(const std::filesystem::path& path, bool rowsAreAscans,
                const std::function<void(LoadedImage)>& take);

}  // namespace oct::app
