// Arrays in .npy files: 2-D (one image) or 3-D (frames along the first axis).
#pragma once

#include <memory>

#include "data/arrays/byte_stream.h"
#include "data/formats/frames.h"

namespace oct::app {

std::unique_ptr<FrameReader> open_npy(std::unique_ptr<ByteStream> stream);

}  // namespace oct::app
