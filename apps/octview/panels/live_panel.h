// The panel of live volumes: the device and its scan, how the volumes come, recordings of them.
#pragma once

#include <array>
#include <string>

#include "octview/live/live_session.h"
#include "octview/model/workspace.h"

namespace oct::app {

class LivePanel {
 public:
  LivePanel();

  // Builds the panel in ImGui's current window.
  void show(LiveSession& session, Workspace& workspace);

  // With the settings of the panel; played back is the volume that is open.
  void start(LiveSession& session, const Workspace& workspace);
  // Of the settings that were started with.
  const std::string& title() const { return title_; }

 private:
  void show_state(LiveSession& session, const Workspace& workspace);
  void show_device(const Workspace& workspace);
  void show_scan();
  void show_numbers(const LiveSession& session) const;
  void show_recorder(LiveSession& session, Workspace& workspace);
  void write(VolumeRecorder& recorder, Workspace& workspace);

  LiveSetup setup_;
  bool plays_back_ = false;
  bool keeps_rate_ = false;
  float rate_ = 100'000;  // A-scans per second
  int depth_ = 256;
  std::string title_;
  std::array<char, 512> library_{};
  bool records_ = false;
  int recorded_count_ = 20;
  std::array<char, 512> file_{};
};

}  // namespace oct::app
