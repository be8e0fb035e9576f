// What the reader of a file delivers before anyone knows which axis is depth.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <vector>

#include "data/image.h"

namespace oct::app {

// Samples as they lie in a file: row by row.
struct Raster {
  std::size_t rows = 0;
  std::size_t columns = 0;
  std::vector<float> samples;
  std::size_t frame = 0;        // which frame of the file this is, counted from 0
  std::size_t frame_count = 1;  // how many the file holds
};

// Takes the frames of a file one after the other.
using TakeRaster = std::function<void(Raster)>;

// Rows of the raster are depth; with rows_are_ascans they are A-scans.
Image to_image(Raster raster, bool rows_are_ascans);

// Refuses empty rasters and such as no OpenGL driver could show, before anything is allocated.
void check_raster_size(const std::filesystem::path& file, std::uint64_t rows, std::uint64_t columns);

// Which frame of a file to take.
struct FrameChoice {
  std::optional<std::size_t> number;  // counted from 0; none: the middle one
  bool single_fits = false;           // a file of one frame gives that one, whatever the number
};

// The number of the chosen frame.
std::size_t choose_frame(const std::filesystem::path& file, std::uint64_t frame_count,
                         const FrameChoice& choice);

}  // namespace oct::app
