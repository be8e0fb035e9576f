#include "scene/drawable_limits.h"

#include <algorithm>
#include <cmath>
#include <mutex>

#include "client/checked.h"
#include "client/offscreen_target.h"
#include "client/renderers.h"
#include "oct_rendering/oct_rendering.h"

namespace oct::app {
namespace {

// Bytes of floats, of which graphics devices keep half.
constexpr std::uint64_t largest_volume = std::uint64_t{1} << 33;
// Voxels that every driver takes, half a GiB there.
constexpr std::uint64_t surely_taken = std::uint64_t{1} << 28;

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

// A cube of so many voxels.
bool takes(std::uint64_t voxels, std::size_t longest) {
  const auto side =
      static_cast<int>(std::min(std::cbrt(static_cast<double>(voxels)), static_cast<double>(longest)));
  const OffscreenTarget target;
  const OfflineRendering rendering;
  try {
    checked(allocateOfflineVolume, rendering.offline(), side, side, side);
  } catch (const RenderingError&) {
    return false;
  }
  return true;
}

}  // namespace

VolumeLimits accepted_limits(VolumeLimits limits, std::uint64_t voxels) {
  static std::mutex mutex;
  static std::uint64_t taken = surely_taken, refused = UINT64_MAX;
  const std::lock_guard lock(mutex);
  std::uint64_t wanted = std::min<std::uint64_t>(voxels, limits.bytes / sizeof(float));
  while (wanted > taken) {
    if (wanted < refused && takes(wanted, limits.voxels_per_axis)) {
      taken = wanted;
    } else {
      refused = std::min(refused, wanted);
      wanted = wanted / 4 * 3;
    }
  }
  if (wanted < voxels) limits.bytes = std::min<std::uint64_t>(limits.bytes, wanted * sizeof(float));
  return limits;
}

VolumeLimits drawable_limits() {
  static const VolumeLimits limits = ask_driver();
  return limits;
}

}  // namespace oct::app
