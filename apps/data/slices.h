// Sections of a volume as images.
#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string_view>

#include "data/image.h"
#include "data/volume.h"

namespace oct::app {

// A B-scan has depth downwards and A-scans to the right; an en-face section A-scans to the right and B-scans downwards;
// the third one B-scans to the right and depth downwards.
enum class SliceAxis { bscan, enface, third };

// "bscan", "enface" or "third".
std::optional<SliceAxis> find_slice_axis(std::string_view name);

// Which axes of a volume (0 depth, 1 A-scans, 2 B-scans) go downwards, to the right, and through the section.
struct SliceAxes {
  std::size_t down;
  std::size_t right;
  std::size_t across;
};
SliceAxes axes_of(SliceAxis axis);

// Of a section's image, from that of the volume.
VoxelSpacing section_spacing(const VoxelSpacing& volume, SliceAxis axis);

enum class Projection { mean, maximum };

// What an en-face section shows: layers around its depth, or around a depth below a surface.
struct EnFace {
  std::size_t layers = 1;  // the first of an even number lies one further above
  Projection projection = Projection::mean;
  bool along_surface = false;  // its depth then counts from the surface on, downwards

  bool operator==(const EnFace&) const = default;
};

// The image's first axis goes downwards, its second to the right; its spacing is that between its samples: downwards, to the
// right, across. A mean is that of the finite samples; layers outside of the volume and NaN do not count; where none is left,
// and where the surface has no depth, the sample is NaN, as all of a section outside of the volume. The surface, which is
// needed along it only, has depths in samples of the volume's file, and may be larger or smaller than the volume.
Image slice_of(const VolumeData& volume, SliceAxis axis, std::ptrdiff_t position, const EnFace& enface = {},
               const LateralMap* surface = nullptr);

// What a volume of these sizes needs to have of its voxels for the section, one layer at least. The section of that part alone is
// the same where its position counts from the part's begin.
VolumePart part_of_slice(const std::array<std::size_t, 3>& sizes, SliceAxis axis, std::ptrdiff_t position,
                         const EnFace& enface = {}, const LateralMap* surface = nullptr);

}  // namespace oct::app
