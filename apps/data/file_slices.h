// Sections of volumes that stay in their files.
#pragma once

#include <cstdint>

#include "data/progress_function.h"
#include "data/slices.h"
#include "data/volume_file.h"

namespace oct::app {

struct FileSliceOptions {
  bool decibels = false;
  bool finite = true;                      // as VolumeFile::read_finite makes samples
  std::uint64_t most_voxels = UINT64_MAX;  // that may be in memory at once
};

// What slice_of gives of the whole volume. In memory are the section and what one frame of the file has for it; layers of a file
// whose frames follow each other along depth are there all at once, and refused with a ReadError where they are too many. The
// surface has the size of the file's volume.
Image slice_of_file(VolumeFile& file, SliceAxis axis, std::ptrdiff_t position, const EnFace& enface,
                    const LateralMap* surface, const FileSliceOptions& options,
                    const ProgressFunction& progress);

}  // namespace oct::app
