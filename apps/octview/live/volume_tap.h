// Copies of a device's volumes for whoever wants them: the next one for a viewer that looks at samples, every one for
// a recording.
#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <vector>

#include "octview/live/live_volume.h"
#include "octview/live/volume_recorder.h"

namespace oct::app {

// Volumes whose memory is used again once nobody holds them. Any thread.
class VolumeMemory {
 public:
  std::shared_ptr<LiveVolume> get();

 private:
  struct Kept {
    std::mutex mutex;
    std::vector<std::unique_ptr<LiveVolume>> free;
  };
  const std::shared_ptr<Kept> kept_ = std::make_shared<Kept>();
};

// What a volume callback tells.
struct ToldVolume {
  const float* samples = nullptr;
  std::array<std::size_t, 3> size{};  // depth, A-scans, B-scans
  std::uint64_t index = 0;
  std::uint64_t nanoseconds = 0;
};

class VolumeTap {
 public:
  // The extent of a volume in millimetres: depth, A-scans, B-scans. The recorder outlives the tap.
  VolumeTap(std::array<double, 3> extent, VolumeRecorder& recorder) : extent_(extent), recorder_(recorder) {}

  // Any thread. The next volume is copied: without a request none is, but for a recording.
  void request() { requested_ = true; }
  std::shared_ptr<const LiveVolume> latest() const;  // null: none yet

  // The acquisition thread. Throws when there is no memory for a copy.
  void take(const ToldVolume& volume);

 private:
  const std::array<double, 3> extent_;
  VolumeRecorder& recorder_;
  VolumeMemory memory_;
  std::atomic<bool> requested_ = true;
  mutable std::mutex mutex_;
  std::shared_ptr<const LiveVolume> latest_;
};

}  // namespace oct::app
