#include "data/file_slices.h"

#include <vector>

namespace oct::app {
namespace {

class FileSlice {
 public:
  FileSlice(VolumeFile& file, SliceAxis axis, std::ptrdiff_t position, const EnFace& enface,
            const FileSliceOptions& options)
      : file_(file), axis_(axis), position_(position), enface_(enface), options_(options) {}

  // All that one part of the file has of the section.
  Image read(VolumePart part, const LateralMap* surface, const ProgressFunction& progress) {
    if (part.voxels() > options_.most_voxels)
      throw ReadError(file_.file().path, "so many layers in full resolution would take too much memory");
    VolumeData volume =
        options_.finite ? file_.read_finite(part, options_.decibels, progress) : file_.read(part, progress);
    if (!options_.finite && options_.decibels) to_decibels(volume.voxels);
    const auto begin = static_cast<std::ptrdiff_t>(part.begin[axes_of(axis_).across]);
    return slice_of(volume, axis_, position_ - begin, enface_, surface);
  }

  Image whole(const LateralMap* surface, const ProgressFunction& progress) {
    return read(part_of(surface), surface, progress);
  }

  // A line of an en-face section from each frame: a row from B-scans, a column from frames along A-scans.
  Image line_by_line(const LateralMap* surface, const ProgressFunction& progress) {
    const auto [depth, ascans, bscans] = file_.sizes();
    const unsigned across = number_of(file_.axes()[2]);
    const bool rows = file_.axes()[2] == Axis::bscan;
    const std::size_t count = file_.sizes()[across];
    Image image{bscans, ascans, std::vector<float>(bscans * ascans), {}};
    for (std::size_t i = 0; i < count; ++i) {
      LateralMap line{rows ? ascans : 1, rows ? 1 : bscans, {}};
      if (surface) {
        for (std::size_t k = 0; k < (rows ? ascans : bscans); ++k)
          line.values.push_back(surface->values[rows ? i * ascans + k : k * ascans + i]);
      }
      VolumePart part = part_of(surface ? &line : nullptr);
      part.begin[across] = i;
      part.end[across] = i + 1;
      const Image shown =
          read(part, surface ? &line : nullptr, [&](std::size_t, std::size_t) { progress(i, count); });
      image.spacing = shown.spacing;
      for (std::size_t k = 0; k < shown.samples.size(); ++k)
        image.samples[rows ? k * bscans + i : i * bscans + k] = shown.samples[k];
    }
    return image;
  }

 private:
  VolumePart part_of(const LateralMap* surface) const {
    return part_of_slice(file_.sizes(), axis_, position_, enface_, surface);
  }

  VolumeFile& file_;
  const SliceAxis axis_;
  const std::ptrdiff_t position_;
  const EnFace& enface_;
  const FileSliceOptions& options_;
};

}  // namespace

Image slice_of_file(VolumeFile& file, SliceAxis axis, std::ptrdiff_t position, const EnFace& enface,
                    const LateralMap* surface, const FileSliceOptions& options,
                    const ProgressFunction& progress) {
  FileSlice slice(file, axis, position, enface, options);
  const LateralMap* const followed = enface.along_surface ? surface : nullptr;
  const bool by_lines = axis == SliceAxis::enface && file.axes()[2] != Axis::depth;
  return by_lines ? slice.line_by_line(followed, progress) : slice.whole(followed, progress);
}

}  // namespace oct::app
