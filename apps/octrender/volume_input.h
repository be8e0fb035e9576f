// Volumes as the verbs read them, with progress and notes on the error stream.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "data/samples.h"
#include "data/volume_reader.h"

namespace oct::app {

// What exceeds the limits comes reduced, with a note on the error stream.
VolumeData read_volume(const DataFile& file, const VolumeLimits& limits = {});

VolumeFile open_volume(const DataFile& file);

// As if the whole volume had been read, in decibels where they are wanted, and finite by its lowest and highest samples. A part
// that has a sample which is not costs a look at the whole file.
VolumeData read_part(VolumeFile& file, const VolumePart& part, bool decibels, bool finite);

// Throws a CommandLineError where one of the millimetres along depth, A-scans and B-scans makes no sense.
void check_extent(const std::vector<double>& extent);

// The spacing that follows from an extent on the command line, if there is one.
void take_extent(VolumeData& volume, const std::vector<double>& extent);

// "0.002 x 0.01 x 0.01 mm (depth, A-scan, B-scan; NRRD header)".
std::string spacing_text(const VoxelSpacing& spacing);

void note(const std::filesystem::path& file, const std::string& text);

// What was given, or that of an automatic range. Without any finite voxel, fails with
// the name of where they came from.
ValueRange volume_range(const std::string& origin, const std::vector<float>& voxels,
                        const std::optional<ValueRange>& given, Shares shares);

}  // namespace oct::app
