// A volume in memory, and how it comes there.
#pragma once

#include <array>
#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace oct::app {

// Depth is fastest, then A-scans, then B-scans, as the library wants it.
struct VolumeData {
  std::size_t depth = 0;
  std::size_t ascans = 0;
  std::size_t bscans = 0;
  std::vector<float> voxels;
};

// How a file without a header is to be read: samples of one type, depth fastest, B-scans slowest.
struct RawLayout {
  std::size_t depth = 0;
  std::size_t ascans = 0;
  std::size_t bscans = 0;
  std::string type;  // "f4", "u1" or "u2"
};

// "DEPTHxASCANSxBSCANS:TYPE"; throws a command line failure.
RawLayout parseRawLayout(const std::string& text);

// The frames of a .npy array or the pages of a TIFF file are B-scans; their rows are depth, or with
// rowsAreAscans A-scans. With a layout the file is read as raw samples.
VolumeData loadVolume(const std::filesystem::path& path, bool rowsAreAscans,
                      const std::optional<RawLayout>& raw);

// Values over the two lateral axes: rows along the B-scans, columns along the A-scans.
struct LateralMap {
  std::size_t ascans = 0;
  std::size_t bscans = 0;
  std::vector<float> values;
};

LateralMap loadLateralMap(const std::filesystem::path& path);  // of several frames the middle one

// A height map, one row per B-scan and one column per A-scan.
std::vector<float> loadHeightMap(const std::filesystem::path& path, const VolumeData& volume);

}  // namespace oct::app
