// Sections of a volume as images.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "data/image.h"
#include "data/volume.h"

namespace oct::app {

// A B-scan has depth downwards and A-scans to the right; an en-face section A-scans to the right and B-scans downwards;
// the third one B-scans to the right and depth downwards.
enum class SliceAxis { bscan, enface, third };

enum class Projection { mean, maximum };

// What an en-face section shows: layers around its depth, or around a depth below a surface.
struct EnFace {
  std::size_t layers = 1;  // the first of an even number lies one further above
  Projection projection = Projection::mean;
  bool along_surface = false;  // its depth then counts from the surface on, downwards

  bool operator==(const EnFace&) const = default;
};

// The image's first axis goes downwards, its second to the right; its spacing is that of the axes it shows. Layers outside of
// the volume do not count; where none is left, and where the surface has no depth, samples are NaN. The surface has one depth in
// samples for each A-scan, one row per B-scan, and is only needed along it.
Image slice_of(const VolumeData& volume, SliceAxis axis, std::ptrdiff_t position, const EnFace& enface = {},
               const std::vector<float>* surface = nullptr);

}  // namespace oct::app
