#include "data/slices.h"

namespace oct::app {

Image slice_of(const VolumeData& volume, SliceAxis axis, std::ptrdiff_t position, const EnFace&,
               const std::vector<float>*) {
  const auto sample = [&](std::size_t z, std::size_t x, std::size_t y) {
    return volume.voxels[(y * volume.ascans + x) * volume.depth + z];
  };
  const auto at = static_cast<std::size_t>(position);
  Image image;
  image.depth = axis == SliceAxis::enface ? volume.bscans : volume.depth;
  image.ascans = axis == SliceAxis::third ? volume.bscans : volume.ascans;
  image.samples.reserve(image.depth * image.ascans);
  for (std::size_t column = 0; column < image.ascans; ++column)
    for (std::size_t row = 0; row < image.depth; ++row)
      image.samples.push_back(axis == SliceAxis::bscan    ? sample(row, column, at)
                              : axis == SliceAxis::enface ? sample(at, column, row)
                                                          : sample(row, at, column));
  return image;
}

}  // namespace oct::app
