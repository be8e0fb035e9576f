// Reads volumes, and maps that belong to them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "data/file_errors.h"
#include "data/progress_function.h"
#include "data/volume.h"

namespace oct::app {

// The file holds one image only.
class NoVolumeError : public ReadError {
  using ReadError::ReadError;
};

// The frames of a .npy array or the pages of a TIFF file are B-scans; their rows are depth, or with
// rows_are_ascans A-scans.
VolumeData load_volume(const std::filesystem::path& path, bool rows_are_ascans,
                       const ProgressFunction& progress = no_progress);

// How a file without a header is to be read: samples of one type, depth fastest, B-scans slowest.
struct RawLayout {
  enum class Type { float32, uint8, uint16 };

  std::size_t depth = 0;
  std::size_t ascans = 0;
  std::size_t bscans = 0;
  Type type = Type::float32;
  std::string origin = "the layout";  // who says so, for messages
};

VolumeData load_raw_volume(const std::filesystem::path& path, const RawLayout& layout,
                           const ProgressFunction& progress = no_progress);

LateralMap load_lateral_map(const std::filesystem::path& path);  // of several frames the middle one

// A height map, one row per B-scan and one column per A-scan.
std::vector<float> load_height_map(const std::filesystem::path& path, const VolumeData& volume);

}  // namespace oct::app
