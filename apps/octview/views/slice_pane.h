// A pane that shows a section of the volume.
#pragma once

#include "octview/model/workspace.h"
#include "octview/views/slice_drawing.h"
#include "octview/views/slice_hands.h"

namespace oct::app {

class SlicePane {
 public:
  SlicePane(const GlFunctions& gl, SliceAxis axis) : axis_(axis), drawing_(gl, axis), hands_(axis) {}

  // Builds the pane in ImGui's current window, which it fills.
  void show(Workspace& workspace);

  // Samples of what is shown are still being read.
  bool is_reading() const;

 private:
  const SliceAxis axis_;
  SliceDrawing drawing_;
  SliceHands hands_;
  int shown_in_ = -1;  // the number of the interface's frame
};

}  // namespace oct::app
