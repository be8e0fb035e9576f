// The program: what is open, its panes and panels.
#pragma once

#include <array>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "octview/live/live_document.h"
#include "octview/live/live_session.h"
#include "octview/model/background_task.h"
#include "octview/model/workspace.h"
#include "octview/panels/live_panel.h"
#include "octview/panels/sidebar.h"
#include "octview/save/save_panel.h"
#include "octview/views/slice_pane.h"
#include "octview/views/volume_pane.h"
#include "octview/window/window.h"

namespace oct::app {

class Viewer {
 public:
  // In the window's context, which has to outlive it.
  explicit Viewer(Window& window);

  // The first file is the volume, a session, or a B-scan; it replaces what is open once it has been read.
  void open(const std::vector<std::filesystem::path>& files);
  // The same with all that is known of the files; what else can be opened is offered.
  void open(Opening opening, std::vector<std::filesystem::path> offered);
  void show_live();
  // Builds the interface of a frame. now: seconds.
  void build(double now);
  // Something is read or written, or is not yet drawn in full quality.
  bool is_busy() const;
  // What is shown, as JSON, for scripts.
  std::string description() const;
  // Volumes come, without an end: new frames are wanted all the time.
  bool is_live() const { return live_.state() == LiveSession::State::running; }

 private:
  void take_live();
  void start(Opening opening);
  void take_loaded();
  void show_sidebar(float width);
  void show_panes();
  void show_pane(Pane pane);
  void show_status();
  void handle_keys();

  Window& window_;
  Workspace workspace_;
  BackgroundTask<Document> loading_;
  std::optional<ViewState> state_to_come_;  // of what is being read
  Sidebar sidebar_;
  std::array<SlicePane, 3> slices_;
  VolumePane volume_;
  SavePanel save_;
  LiveSession live_;
  LiveDocument live_document_;
  LivePanel live_panel_;
  bool keys_shown_ = false;
};

}  // namespace oct::app
