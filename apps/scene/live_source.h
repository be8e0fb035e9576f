// The volumes of a device on their way into live rendering.
#pragma once

#include <array>
#include <optional>

#include "client/handle_owner.h"
#include "oct_rendering/oct_rendering.h"
#include "scene/live_device.h"

namespace oct::app {

// What is taken of the device's volumes.
struct SourceSettings {
  std::optional<int> size_z;  // depth samples; none: all
  double refractive_index = 1.0;
  bool analog = false;  // with the device's analog input
  std::optional<PolarizationMode> polarization;
  double threshold = 0.0;  // decibels; what is darker counts as 0, but for intensities
  std::array<int, 4> averaging{1, 1, 1, 1};
};

// Stopped at the end of its life.
class LiveSource {
 public:
  LiveSource(const LiveDevice& device, const SourceSettings& settings);

  // Called on the acquisition thread: when acquisition fails, and with each volume. What user points to outlives the
  // source.
  void announce(OctErrorFunctionWithUser on_error, void* user);
  void hand_volumes_to(OctVolumeFunctionWithUser on_volume, void* user);

  void start(LiveVolumeRenderingHandle live);
  void stop();
  void cancel();  // without waiting for the volume that is being measured
  bool is_running() const;

 private:
  const LiveDevice& device_;
  HandleOwner<LiveDataSourceHandle> handle_;
};

}  // namespace oct::app
