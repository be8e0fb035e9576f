// What mouse and keys do in the pane of the volume.
#pragma once

#include <array>
#include <optional>

#include "octview/model/camera.h"
#include "octview/model/workspace.h"
#include "octview/views/volume_image.h"

namespace oct::app {

// Where the picture is on the screen, in its points.
struct VolumeGeometry {
  std::array<double, 2> corner{};
  PictureSize size;

  PixelPoint inside(const PixelPoint& screen) const { return {screen[0] - corner[0], screen[1] - corner[1]}; }
  std::array<double, 2> part(const PixelPoint& screen) const {
    return {(screen[0] - corner[0]) / size.width, (screen[1] - corner[1]) / size.height};
  }
};

// Of a voxel in the box.
BoxPoint box_point(const Document& document, const VoxelPoint& voxel);

class VolumeHands {
 public:
  // For the item of ImGui that was built last, which is the picture.
  void handle(Workspace& workspace, const VolumeGeometry& geometry, const VolumeImage& image);

  // Pushed to the back and pulled to the front.
  static void toggle_clip_plane(Workspace& workspace);

 private:
  static std::optional<MeasuredPoint> point_at(const Workspace& workspace, const VolumeGeometry& geometry);
  void press(Workspace& workspace, const VolumeGeometry& geometry, const VolumeImage& image);
  void drag(Workspace& workspace, const VolumeGeometry& geometry, const VolumeImage& image);
  void hover(Workspace& workspace, const VolumeGeometry& geometry, const VolumeImage& image);
  void handle_keys(Workspace& workspace, const VolumeGeometry& geometry);

  std::optional<MeasuredPoint> dragged_;
  bool placing_ = false;                // the button went down to set a point
  bool panning_ = false;                // or to pan
  std::optional<PixelPoint> asked_at_;  // where the text is of
  std::string asked_;
};

}  // namespace oct::app
