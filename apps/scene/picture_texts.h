// What files of pictures tell about themselves.
#pragma once

#include <string>

#include "data/formats/png_writer.h"

namespace oct::app {

// command: the command line of octrender that draws the picture.
PngTexts picture_texts(const std::string& command);

}  // namespace oct::app
