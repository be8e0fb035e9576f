#include "volume/frame/volume_colormap.h"

#include <stdexcept>
#include <utility>

#include "core/timing_mark.h"

namespace oct {

void VolumeColormap::set_colors(Colormap colors) {
  colors_.set(std::move(colors));
}

void VolumeColormap::set_boundaries(double lower, double upper) {
  lower_ = static_cast<float>(lower);
  upper_ = static_cast<float>(upper);
}

void VolumeColormaps::create() {
  for (auto& colormap : colormaps_) {
    if (!colormap) colormap.emplace();
    colormap->release_texture();
  }
}

void VolumeColormaps::release() {
  for (auto& colormap : colormaps_) colormap.reset();
}

VolumeColormap* VolumeColormaps::find(ColormapRole role) {
  auto& colormap = colormaps_[static_cast<std::size_t>(role)];
  return colormap ? &*colormap : nullptr;
}

const VolumeColormap& VolumeColormaps::at(ColormapRole role) const {
  const auto& colormap = colormaps_[static_cast<std::size_t>(role)];
  if (!colormap) throw std::runtime_error("Program has not been compiled yet.");
  return *colormap;
}

void VolumeColormaps::upload_changed() {
  for (auto& colormap : colormaps_) {
    if (colormap && colormap->upload_if_changed()) record_timing_mark("render: colormap changed");
  }
}

}  // namespace oct
