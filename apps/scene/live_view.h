// Shows the volumes of a device as they come, on a rendering thread of its own.
#pragma once

#include <array>
#include <functional>
#include <optional>
#include <string>

#include "data/colormap.h"
#include "data/picture.h"
#include "oct_rendering/oct_rendering.h"
#include "scene/live_device.h"
#include "scene/live_source.h"
#include "scene/volume_view.h"

namespace oct::app {

struct LayerColors {
  Colormap colormap;
  ValueRange range;

  bool operator==(const LayerColors&) const = default;
};

struct LiveScene {
  VolumeView view;
  LayerColors volume;
  std::optional<LayerColors> surface;  // depths in the unit of the device's range; none: not drawn
  std::optional<LayerColors> analog;   // volts; needs a source with the analog input
  int analog_channel = 0;

  bool operator==(const LiveScene&) const = default;
};

void set_scene(VolumeRendererHandle renderer, const LiveScene& scene);

struct LiveSettings {
  SourceSettings source;
  double seconds = 5.0;             // from the first volume on
  double frames_per_second = 60.0;  // at most; 0: no limit
  unsigned snapshots = 1;           // at even intervals, the last one at the end
};

struct LiveEvents {
  std::function<void(unsigned number, const Picture&)> snapshot;
  std::function<void(double seconds)> progress;  // now and then; 0 until the first volume
};

struct LiveResult {
  OctLiveStatistics volumes{};
  double seconds = 0;         // from the end of the frame that showed the first volume on
  unsigned frames = 0;        // since then
  double worst_frame = 0;     // milliseconds
  std::array<int, 3> size{};  // depth samples, A-scans, B-scans as they were drawn
  std::string explanation;    // why the last snapshot shows nothing; empty when it shows something
};

// Runs until the time is over. Throws a failure when acquisition or rendering fails.
LiveResult show_live(const LiveDevice& device, const LiveScene& scene, const LiveSettings& settings,
                     const LiveEvents& events);

}  // namespace oct::app
