// Arrays in .npy files: 2-D (one image) or 3-D (frames along the first axis).
#pragma once

#include "data/formats/input_file.h"
#include "data/formats/raster.h"
#include "data/progress_function.h"

namespace oct::app {

Raster readNpy(InputFile& file, const FrameChoice& choice, const ProgressFunction& progress = noProgress);

// Every frame. In Fortran order a frame is spread over the whole file, which is therefore read once for as
// many frames as may be kept at a time.
constexpr std::size_t kSamplesAtATime = std::size_t{1} << 27;
void readNpyFrames(InputFile& file, const TakeRaster& take, const ProgressFunction& progress = noProgress,
                   std::size_t samplesAtATime = kSamplesAtATime);

}  // namespace oct::app
