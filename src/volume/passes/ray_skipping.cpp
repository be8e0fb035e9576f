#include "volume/passes/ray_skipping.h"

#include <cmath>

#include "volume/layout/box_view.h"
#include "volume/skipping/empty_space.h"

namespace oct {
namespace {

// From other boundaries nobody can tell what shows.
bool ascend(const VolumeColormap& colors) {
  return std::isfinite(colors.lower()) && std::isfinite(colors.upper()) && colors.lower() < colors.upper();
}

void spread_limits(Visibility& visibility, float least, float greatest) {
  visibility.count = Visibility::most_limits;
  for (int i = 0; i < visibility.count; ++i) {
    const float share = static_cast<float>(i) / static_cast<float>(visibility.count);
    visibility.limits[static_cast<std::size_t>(i)] = least + share * (greatest - least);
  }
}

Visibility visibility_of(const VolumeFrame& frame) {
  Visibility visibility;
  const VolumeSource& source = frame.source;
  const VolumeColormap& main = frame.main_colormap();
  const VolumeMode mode = frame.settings.volume_mode;
  if (!source.empty_space || !source.volume_maxima || frame.settings.slices <= 0 || !ascend(main))
    return visibility;
  visibility.octants = octants_of(eye_in_model(frame.camera));
  if (mode == VolumeMode::mean) return visibility;  // every sample counts
  if (mode == VolumeMode::maximum) {
    spread_limits(visibility, main.lower(), main.upper());
  } else if (mode == VolumeMode::dual_coloring || !source.overlay_present) {
    visibility.count = 1;
    visibility.limits[0] = main.visible_from();
  } else if (source.overlay_maxima && ascend(frame.colormaps.at(ColormapRole::overlay))) {
    // Below its boundaries the overlay's maximum counts too, as the weight that it is blended with.
    const BrickMaxima::Range range = source.overlay_maxima->range();
    spread_limits(visibility, range.least, range.greatest);
    visibility.volume_limit = main.visible_from();
    visibility.overlay = true;
  }
  return visibility;
}

}  // namespace

Visibility prepare_empty_space(const VolumeFrame& frame) {
  const Visibility visibility = visibility_of(frame);
  if (visibility.count > 0) {
    frame.source.empty_space->update(*frame.source.volume_maxima,
                                     visibility.overlay ? frame.source.overlay_maxima : nullptr, visibility);
  }
  return visibility;
}

void set_empty_space(const RaycastingProgram::RayLocations& at, const VolumeFrame& frame,
                     const Visibility& visibility) {
  glUniform1i(at.limitCount, visibility.count);
  if (visibility.count == 0) return bind_volume_texture(volume_unit::empty, GL_TEXTURE_3D, 0);
  const BrickMaxima& maxima = *frame.source.volume_maxima;
  bind_volume_texture(volume_unit::empty, GL_TEXTURE_3D, frame.source.empty_space->texture());
  const BrickGrid& grid = maxima.grid();
  const VolumeExtent& extent = maxima.extent();
  const auto side = static_cast<float>(maxima.side());
  glUniform3i(at.grid, static_cast<GLint>(grid.depth), static_cast<GLint>(grid.a_scans),
              static_cast<GLint>(grid.b_scans));
  glUniform3f(at.brickScale, static_cast<float>(extent.depth) / side,
              static_cast<float>(extent.a_scans) / side, static_cast<float>(extent.b_scans) / side);
  glUniform3f(at.brickOffset, 0.5F / side, 0.5F / side, 0.5F / side);
  glUniform1fv(at.limits, Visibility::most_limits, visibility.limits.data());
}

}  // namespace oct
