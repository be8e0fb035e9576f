// Gray TIFF images of integers or floats; each page is a frame.
#pragma once

#include <memory>

#include "data/formats/frames.h"
#include "data/formats/input_file.h"

namespace oct::app {

std::unique_ptr<FrameReader> open_tiff(std::shared_ptr<InputFile> file);

}  // namespace oct::app
