// A pane that shows a section of the volume.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "client/renderers.h"
#include "octview/model/workspace.h"
#include "octview/window/pane_texture.h"

namespace oct::app {

class SlicePane {
 public:
  SlicePane(const GlFunctions& gl, SliceAxis axis);

  // Builds the pane in ImGui's current window, which it fills.
  void show(Workspace& workspace);

 private:
  PaneTexture texture_;
  SliceAxis axis_;
  DisplayRenderer renderer_;
  std::uint64_t drawn_revision_ = 0;
  double drawn_position_ = -1;
};

}  // namespace oct::app
