#include "octrender/sections.h"

#include "command_line/platform.h"
#include "command_line/progress.h"
#include "data/file_slices.h"
#include "data/volume_reader.h"

namespace oct::app {

Sections::Sections(SliceAxis axis, const EnFace& enface, const std::string& surface,
                   const std::array<std::size_t, 3>& sizes, const std::array<std::size_t, 3>& file_size)
    : axis_(axis), enface_(enface), sizes_(sizes) {
  if (surface.empty()) return;
  surface_ = load_height_map({from_utf8(surface), {}, {}}, file_size);
  enface_.along_surface = true;
}

Image Sections::of(const VolumeData& volume, std::ptrdiff_t position) const {
  return slice_of(volume, axis_, position, enface_, &surface_);
}

Image Sections::of(VolumeFile& file, std::ptrdiff_t position, bool decibels, bool finite) const {
  FileSliceOptions options{decibels, finite};
  if (const std::uint64_t memory = physical_memory()) options.most_voxels = memory / 3 * 2 / sizeof(float);
  return slice_of_file(file, axis_, position, enface_, &surface_, options,
                       reading_progress(file.file().path));
}

}  // namespace oct::app
