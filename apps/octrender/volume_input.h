// Volumes as the verbs read them, with progress and notes on the error stream.
#pragma once

#include <array>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "data/samples.h"
#include "data/volume_reader.h"

namespace oct::app {

// As far as the memory of any machine goes.
VolumeData read_volume(const DataFile& file);

// To be drawn: what the driver or the machine's memory would not take comes reduced, with a note on the error stream.
VolumeData read_drawable_volume(const DataFile& file);

VolumeFile open_volume(const DataFile& file);

// Throws a CommandLineError where one of the millimetres along depth, A-scans and B-scans makes no sense.
void check_extent(const std::vector<double>& extent);

// The spacing that follows from an extent on the command line, if there is one.
void take_extent(VolumeData& volume, const std::vector<double>& extent);
// The same of a file with these sizes.
VoxelSpacing spacing_of(const std::vector<double>& extent, const std::array<std::size_t, 3>& size);

// "0.002 x 0.01 x 0.01 mm (depth, A-scan, B-scan; NRRD header)".
std::string spacing_text(const VoxelSpacing& spacing);

void note(const std::filesystem::path& file, const std::string& text);

// What was given, or that of an automatic range. Without any finite voxel, fails with
// the name of where they came from.
ValueRange volume_range(const std::string& origin, const std::vector<float>& voxels,
                        const std::optional<ValueRange>& given, Shares shares);

}  // namespace oct::app
