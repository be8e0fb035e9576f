// The sections that one run of octrender slice draws.
#pragma once

#include <array>
#include <cstddef>
#include <string>

#include "data/slices.h"
#include "data/volume_file.h"

namespace oct::app {

class Sections {
 public:
  // Sizes of the volume that they are of, and of its file. surface: a height map that en-face ones follow; empty: none.
  Sections(SliceAxis axis, const EnFace& enface, const std::string& surface,
           const std::array<std::size_t, 3>& sizes, const std::array<std::size_t, 3>& file_size);

  SliceAxis axis() const { return axis_; }
  std::ptrdiff_t count() const { return static_cast<std::ptrdiff_t>(sizes_[axes_of(axis_).across]); }
  bool follow_surface() const { return enface_.along_surface; }

  Image of(const VolumeData& volume, std::ptrdiff_t position) const;
  // Of a volume that stays in its file. finite: as it is drawn.
  Image of(VolumeFile& file, std::ptrdiff_t position, bool decibels, bool finite) const;

 private:
  SliceAxis axis_;
  EnFace enface_;
  std::array<std::size_t, 3> sizes_;
  LateralMap surface_;
};

}  // namespace oct::app
