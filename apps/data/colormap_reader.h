// Colour maps of a user's own.
#pragma once

#include <filesystem>

#include "data/colormap.h"

namespace oct::app {

// A table of comma separated numbers: one colour per line, r,g,b or r,g,b,a, all from 0 to 1 or whole numbers
// from 0 to 255. A first line without any number is a header.
Colormap read_colormap(const std::filesystem::path& path);

}  // namespace oct::app
