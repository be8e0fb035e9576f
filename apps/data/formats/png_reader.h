// PNG images of 8 or 16 bits: gray values as they are, colours as their luminance, transparency ignored.
#pragma once

#include <memory>

#include "data/formats/frames.h"
#include "data/formats/input_file.h"
#include "data/picture.h"

namespace oct::app {

std::unique_ptr<FrameReader> open_png(std::shared_ptr<InputFile> file);

// Its colours, in three channels, or four where it has alpha.
Picture read_png_picture(const std::filesystem::path& path);

}  // namespace oct::app
