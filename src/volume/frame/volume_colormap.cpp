#include "volume/frame/volume_colormap.h"

#include "core/exception.h"
#include "core/timing_mark.h"
#include "volume/skipping/visibility.h"

namespace oct {

bool VolumeColormap::update(const ColormapSettings& settings) {
  lower_ = settings.lower;
  upper_ = settings.upper;
  visible_from_ = composite_limit(settings.colors.colors(), lower_, upper_);
  return texture_.upload(settings.colors);
}

void VolumeColormap::release() {
  texture_.release();
  samples_.release();
}

void VolumeColormaps::update(const VolumeSettings& settings) {
  exist_ = settings.colormaps.has_value();
  if (!exist_) return;
  for (std::size_t role = 0; role < colormaps_.size(); ++role) {
    if (colormaps_[role].update((*settings.colormaps)[role])) record_timing_mark("render: colormap changed");
  }
  const SampleOpacity opacity =
      settings.opacity_length > 0.0 ? SampleOpacity::of_a_length : SampleOpacity::of_a_step;
  // Those that rays look up with every sample.
  for (const ColormapRole role : {ColormapRole::main, ColormapRole::overlay}) {
    const auto i = static_cast<std::size_t>(role);
    colormaps_[i].update_samples((*settings.colormaps)[i], opacity);
  }
}

void VolumeColormaps::release() {
  for (VolumeColormap& colormap : colormaps_) colormap.release();
}

const VolumeColormap& VolumeColormaps::at(ColormapRole role) const {
  if (!exist_) throw StateError("Program has not been compiled yet.");
  return colormaps_[static_cast<std::size_t>(role)];
}

}  // namespace oct
