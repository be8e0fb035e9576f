// The data that is looked at. What was loaded never changes; a new file makes a new document.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "data/progress_function.h"
#include "data/volume.h"
#include "data/volume_reader.h"
#include "octview/model/view_state.h"

namespace oct::app {

struct Document {
  // None: nothing is open. Every voxel is finite. Reduced where the memory does not hold the file; sections are then read from
  // there.
  std::shared_ptr<const VolumeData> volume;
  std::shared_ptr<const VolumeData> overlay;
  // What the driver gets of them: the same, or reduced to its limits.
  std::shared_ptr<const VolumeData> drawn_volume;
  std::shared_ptr<const VolumeData> drawn_overlay;
  std::shared_ptr<const LateralMap>
      surface;  // depths in samples of the file, one per A-scan of it; NaN: none
  std::shared_ptr<const std::vector<float>>
      drawn_surface;  // the same, all of it finite, as volumes are drawn with it
  std::shared_ptr<const LateralMap> secondary;
  SessionFiles files;
  std::string title;
  std::size_t not_finite = 0;  // samples of the volume that were NaN or infinite
  std::uint64_t revision = 0;  // another number for other data

  explicit operator bool() const { return volume != nullptr; }
  // Voxels of sections, and of every place that anyone speaks of, are the samples of the file, however much the volumes above are
  // reduced: depth, A-scans, B-scans.
  std::array<std::size_t, 3> sizes() const;
  // Between them, with who says so; zeros where nobody does.
  VoxelSpacing spacing() const;
  // Of the whole volume, in the same order; in millimetres, or in voxels where their spacing is not known.
  std::array<double, 3> extent() const;
};

// "reduced 2 x 2 x 1 times (depth, A-scans, B-scans)".
std::string reduction_text(const VolumeData& volume);

std::uint64_t next_revision();  // another one each time

struct DocumentLimits {
  VolumeLimits memory;    // larger volumes are reduced while they are read, for sections too
  VolumeLimits drawable;  // by the driver
};

// Reads everything that the files name, but the volume where it is that of the document before. Throws a ReadError; what the
// progress function throws passes through.
Document load_document(const SessionFiles& files, const ProgressFunction& progress,
                       const Document& before = {}, const DocumentLimits& limits = {});

}  // namespace oct::app
