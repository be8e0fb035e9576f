// The pane that shows the volume.
#pragma once

#include <cstdint>

#include "client/renderers.h"
#include "octview/live/live_session.h"
#include "octview/model/workspace.h"
#include "octview/window/pane_texture.h"

namespace oct::app {

class VolumePane {
 public:
  explicit VolumePane(const GlFunctions& gl);

  // Builds the pane in ImGui's current window, which it fills.
  // The volumes of a running session in place of the document's.
  void show(Workspace& workspace, LiveSession* live);

  // Drawn coarsely, because something moves; full quality follows.
  bool is_coarse() const { return false; }

 private:
  PaneTexture texture_;
  OfflineRendering rendering_;
  std::uint64_t uploaded_revision_ = 0;
};

}  // namespace oct::app
