// Loads a B-scan from any of the known file formats.
#pragma once

#include <cstddef>

#include "data/data_file.h"
#include "data/image.h"
#include "data/progress_function.h"

namespace oct::app {

struct LoadedImage {
  Image image;
  std::size_t frame = 0;        // which B-scan of the file this is, counted from 0
  std::size_t frame_count = 1;  // how many the file holds
};

LoadedImage load_image(const DataFile& file, const FrameChoice& choice,
                       const ProgressFunction& progress = no_progress);

}  // namespace oct::app
