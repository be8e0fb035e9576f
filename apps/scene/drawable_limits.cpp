#include "scene/drawable_limits.h"

#include <algorithm>
#include <cstdint>

#include "client/checked.h"
#include "oct_rendering/oct_rendering.h"

namespace oct::app {
namespace {

// Bytes of floats, of which graphics devices keep half.
constexpr std::uint64_t largest_volume = std::uint64_t{1} << 33;

VolumeLimits ask_driver() {
  OctRendererInfo driver{};
  driver.size = sizeof driver;
  checked(getRendererInfo, &driver);
  VolumeLimits limits{driver.max_3d_texture_size, largest_volume};
  // A voxel takes two bytes there and four here; a quarter is left for what else is drawn.
  if (driver.free_video_memory > 0)
    limits.bytes = std::min<std::uint64_t>(limits.bytes, driver.free_video_memory / 4 * 6);
  return limits;
}

}  // namespace

VolumeLimits drawable_limits() {
  static const VolumeLimits limits = ask_driver();
  return limits;
}

}  // namespace oct::app
