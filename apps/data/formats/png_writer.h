// Writes a picture as PNG.
#pragma once

#include <filesystem>

#include "data/picture.h"

namespace oct::app {

// Writes beside the file under another name first: when this fails, what was there before stays as it was.
void write_png(const std::filesystem::path& path, const Picture& picture);

}  // namespace oct::app
