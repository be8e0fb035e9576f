#include "volume/clip_plane.h"

namespace oct {

void ClipPlane::set(bool enabled, bool secondFlag, float value) {
  enabled_ = enabled;
  secondFlag_ = secondFlag;
  value_ = value;
}

void ClipPlane::update(const View&) {}

}  // namespace oct
