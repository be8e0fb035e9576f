// What the panes and panels of the viewer share.
#pragma once

#include <array>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "octview/model/document.h"
#include "octview/model/view_state.h"

namespace oct::app {

// What is to be read, and how it is then shown; without a state as start_state says.
struct Opening {
  SessionFiles files;
  std::optional<ViewState> state;
};

// What opening this path means: a session, or data of one's own. Throws a ReadError.
Opening opening_of(const std::filesystem::path& path);

struct Workspace {
  Document document;
  ViewState state;
  std::string under_cursor;  // value, voxel and millimetres, in the frame that is built; empty: nothing
  std::string message;       // the last failure, or what just happened
  bool message_is_error = false;
  double said_at = 0;  // when the message came
  // What the user named, to choose from; the first one is opened.
  std::vector<std::filesystem::path> offered;
  // What clicks measure, and the points of it so far.
  std::optional<MeasurementKind> tool;
  std::vector<VoxelPoint> clicked;
  Pane pane = Pane::volume;  // that the mouse was over last
  // What a panel wants opened. What is open stays until it has been read.
  std::optional<Opening> wanted;
  std::array<PictureSize, 4> pane_sizes{};  // in pixels, by Pane
  double now = 0;                           // seconds, of the frame that is built

  void say(std::string text) {
    message = std::move(text);
    message_is_error = false;
    said_at = now;
  }
  void fail(std::string text) {
    message = std::move(text);
    message_is_error = true;
    said_at = now;
  }
  // That was clicked. The last one makes the measurement and puts the tool away.
  void add_point(const VoxelPoint& point);
  void stop_measuring();
  void move_point(const MeasuredPoint& which, const VoxelPoint& to);
  void remove_measurement(std::size_t which);
  // Over the whole window, or all panes again.
  void toggle_large(Pane which);
  PictureSize size_of(Pane which) const;  // of one that was not yet shown a usual one
};

// Whole numbers, in the volume.
VoxelPoint nearest_voxel(const Document& document, const VoxelPoint& point);
VoxelPoint middle_of(const Document& document);

// Of a layer that is new.
LayerLook first_look(DataFile SessionFiles::*layer);

// Puts ranges that follow the data where it is, and the crosshair into the volume.
void fit_state(const Document& document, ViewState& state);

// The state that shows a document that was just opened: automatic ranges, the crosshair in the middle.
ViewState start_state(const Document& document);

}  // namespace oct::app
