#include "volume/layout/clip_plane.h"

#include <cmath>

namespace oct {

void ClipPlane::update(const ClipPlaneSettings& settings, const View& view, const FilledBox& box) {
  settings_ = settings;
  cut_ = {};
  if (!settings_.enabled) return;
  orient(view);
  cut_ = box.cut(plane_);
}

void ClipPlane::orient(const View& view) {
  if (!settings_.fixed || !oriented_) {
    const float x = radians_of(view.angle_x);
    const float y = radians_of(view.angle_y);
    plane_ = {std::sin(y) * std::cos(x), std::sin(x), -std::cos(y) * std::cos(x), 0.0F};
    oriented_ = true;
  }
  // The sum is the plane's reach over the box; 0.99 of it keeps the plane inside at either end.
  const double reach = std::abs(static_cast<double>(plane_.x)) + std::abs(static_cast<double>(plane_.y)) +
                       std::abs(static_cast<double>(plane_.z));
  plane_.w = static_cast<float>((2.0 * static_cast<double>(settings_.value) - 1.0) * 0.99 * reach);
}

}  // namespace oct
