#include "volume/frame/volume_colormap.h"

#include <stdexcept>

#include "core/timing_mark.h"
#include "gl/opengl_error.h"

namespace oct {

void VolumeColormap::set_colors(Colormap colors) {
  colors_ = std::move(colors);
  changed_ = true;
}

void VolumeColormap::set_boundaries(double lower, double upper) {
  lower_ = static_cast<float>(lower);
  upper_ = static_cast<float>(upper);
}

bool VolumeColormap::upload_if_changed() {
  if (!changed_) return false;
  // A map without entries shows nothing.
  upload_colormap(texture_, colors_.empty() ? Colormap{0U} : colors_);
  changed_ = false;
  return true;
}

void VolumeColormaps::create() {
  for (auto& colormap : colormaps_) {
    if (!colormap) colormap.emplace();
    colormap->mark_changed();
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
    if (!colormap || !colormap->upload_if_changed()) continue;
    record_timing_mark("render: colormap changed");
    gl::throwOnGLError("render: colormap changed");
  }
}

}  // namespace oct
