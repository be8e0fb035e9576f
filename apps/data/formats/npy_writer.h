// Writes volumes as .npy arrays.
#pragma once

#include <filesystem>

#include "data/volume.h"

namespace oct::app {

// 32-bit floats with the axes B-scan, depth, A-scan; without the first where there is one B-scan. When
// this fails, what was there before stays as it was.
void write_npy(const std::filesystem::path& path, const VolumeData& volume);

}  // namespace oct::app
