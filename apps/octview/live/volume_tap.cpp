#include "octview/live/volume_tap.h"

#include <utility>

namespace oct::app {

std::shared_ptr<LiveVolume> VolumeMemory::get() {
  std::unique_ptr<LiveVolume> volume;
  {
    const std::lock_guard lock(kept_->mutex);
    if (!kept_->free.empty()) {
      volume = std::move(kept_->free.back());
      kept_->free.pop_back();
    }
  }
  if (!volume) volume = std::make_unique<LiveVolume>();
  // Two are enough: more come back only when a recording ends, and then memory is to be free again.
  const auto give_back = [kept = kept_](LiveVolume* used) {
    std::unique_ptr<LiveVolume> owned(used);
    const std::lock_guard lock(kept->mutex);
    if (kept->free.size() < 2) kept->free.push_back(std::move(owned));
  };
  return {volume.release(), give_back};
}

std::shared_ptr<const LiveVolume> VolumeTap::latest() const {
  const std::lock_guard lock(mutex_);
  return latest_;
}

void VolumeTap::take(const ToldVolume& told) {
  const bool requested = requested_.exchange(false);
  if (!requested && !recorder_.is_on()) return;
  const std::shared_ptr<LiveVolume> volume = memory_.get();
  VolumeData& data = volume->data;
  const auto [depth, ascans, bscans] = told.size;
  data.depth = depth;
  data.ascans = ascans;
  data.bscans = bscans;
  data.voxels.assign(told.samples, told.samples + depth * ascans * bscans);
  for (std::size_t axis = 0; axis < 3; ++axis) {
    data.spacing.mm[axis] = extent_[axis] / static_cast<double>(told.size[axis]);
  }
  data.spacing.source = "the device";
  volume->index = told.index;
  volume->nanoseconds = told.nanoseconds;
  recorder_.add(volume);
  const std::lock_guard lock(mutex_);
  latest_ = volume;
}

}  // namespace oct::app
