// The pane that shows the volume.
#pragma once

#include "octview/model/workspace.h"
#include "octview/views/volume_hands.h"
#include "octview/views/volume_image.h"

namespace oct::app {

class VolumePane {
 public:
  explicit VolumePane(const GlFunctions& gl) : image_(gl) {}

  // Builds the pane in ImGui's current window, which it fills.
  // The volumes of a running session in place of the document's.
  void show(Workspace& workspace, LiveSession* live);

  // Drawn coarsely, because something moves, or not yet; full quality follows. A pane that is not shown owes nothing.
  bool is_coarse() const;

 private:
  void show_upload(const VolumeGeometry& geometry);
  void show_clip_handle(Workspace& workspace, const VolumeGeometry& geometry);

  VolumeImage image_;
  VolumeHands hands_;
  int shown_in_ = -1;  // the number of the interface's frame
};

}  // namespace oct::app
