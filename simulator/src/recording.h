/// @file
/// Volumes that were recorded before.
#pragma once

#include <array>
#include <filesystem>
#include <memory>
#include <vector>

namespace oct::simulator {

/// One or more processed volumes of one size in memory.
struct Recording {
  using Samples = std::vector<float>;  ///< laid out as Data

  std::array<int, 3> sizes{};  ///< depth samples, A-scans, B-scans
  std::vector<std::shared_ptr<const Samples>> volumes;
};

/// Reads a NumPy array of little-endian 32-bit floats in C order with the axes B-scans, depth, A-scans,
/// before which may come an axis of successive volumes. Throws std::runtime_error that names the file.
Recording readRecording(const std::filesystem::path& file);

}  // namespace oct::simulator
