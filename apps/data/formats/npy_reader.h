// Arrays in .npy files: 2-D (one image) or 3-D (frames along the first axis).
#pragma once

#include "data/formats/input_file.h"
#include "data/formats/raster.h"
#include "data/progress_function.h"

namespace oct::app {

Raster read_npy(InputFile& file, const FrameChoice& choice, const ProgressFunction& progress = no_progress);

// Every frame. In Fortran order a frame is spread over the whole file, which is therefore read once for as
// many frames as may be kept at a time.
constexpr std::size_t default_samples_at_a_time = std::size_t{1} << 27;
void read_npy_frames(InputFile& file, const TakeRaster& take, const ProgressFunction& progress = no_progress,
                     std::size_t samples_at_a_time = default_samples_at_a_time);

}  // namespace oct::app
