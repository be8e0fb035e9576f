// A device that is being looked at: from its opening, on a thread of its own, to its end. Nothing here waits for it.
#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "client/renderers.h"
#include "octview/live/background_work.h"
#include "octview/live/live_volume.h"
#include "octview/live/volume_recorder.h"
#include "scene/live_source.h"
#include "scene/live_view.h"

namespace oct::app {

struct LiveSetup {
  DeviceSetup device;
  SourceSettings source;
  // A volume that the device plays back in place of its phantom, at the noise of the device's setup.
  std::shared_ptr<const VolumeData> recording;
};

// One thread, whose context is current wherever it says OpenGL, and always the same.
class LiveSession {
 public:
  enum class State { off, opening, running, failed };

  LiveSession();
  ~LiveSession();  // OpenGL; waits for the device
  LiveSession(const LiveSession&) = delete;
  LiveSession& operator=(const LiveSession&) = delete;

  // OpenGL. What runs is ended first; its latest volume stays.
  void start(const LiveSetup& setup);
  void stop();
  // OpenGL. Once per frame: goes on with what the other threads have done. Throws nothing that is the device's. Frames
  // that nobody draws are no reason to wait for the source: then its volumes are hidden.
  void update();

  State state() const { return state_; }
  const std::string& error() const {
    return error_;
  }  // why it failed, or what the running device says; empty: nothing

  // OpenGL. Draws the latest volume into the framebuffer that is bound. Throws the library's error.
  void draw(const LiveScene& scene);
  bool draws_volumes() const { return scene_.has_value(); }  // else frames draw nothing of them
  // Null unless volumes run. Of one start.
  VolumeRendererHandle renderer() const;
  OctLiveStatistics statistics() const;  // of the latest start, the end included

  // Asks for a copy of the next volume; update() asks twice a second.
  void request_volume();
  // Of the running device, or else of the last one that gave any; null: none yet.
  std::shared_ptr<const LiveVolume> latest() const;

  unsigned starts() const { return starts_; }  // so far

  VolumeRecorder& recorder() { return recorder_; }

 private:
  class Device;
  struct Opening;

  void end();
  void take_over();
  void watch();
  void hide();
  OctLiveStatistics current_statistics() const;

  VolumeRecorder recorder_;
  State state_ = State::off;
  unsigned starts_ = 0;
  std::string error_;
  std::shared_ptr<Opening> opening_;
  std::unique_ptr<Device> device_;
  std::optional<VolumeRenderer> renderer_;  // made by the first start
  std::optional<RenderingHandle<LiveVolumeRenderingHandle>> live_;
  std::optional<LiveScene> scene_;  // as the renderer has it; none: it draws no volumes, or something failed
  bool drawn_ = false;              // since the last update
  OctLiveStatistics statistics_{};  // at the end of the latest start
  std::shared_ptr<const LiveVolume> latest_;
  std::chrono::steady_clock::time_point requested_;
  BackgroundWork work_;  // the last of all: it ends devices
};

}  // namespace oct::app
