// What mouse and keys do in a pane of sections.
#pragma once

#include <optional>

#include "octview/model/slice_geometry.h"
#include "octview/model/workspace.h"

namespace oct::app {

class SliceHands {
 public:
  explicit SliceHands(SliceAxis axis) : axis_(axis) {}

  // For the item of ImGui that was built last, which is the picture.
  void handle(Workspace& workspace, const SliceGeometry& geometry, const SliceSize& slice);

 private:
  void handle_mouse(Workspace& workspace, const SliceGeometry& geometry, const SliceSize& slice);
  void handle_keys(Workspace& workspace, const ScreenPoint& mouse, const SliceGeometry& geometry);
  void press(Workspace& workspace, const ScreenPoint& mouse, const SliceGeometry& geometry);
  void drag(Workspace& workspace, const ScreenPoint& mouse, const SliceGeometry& geometry,
            const SliceSize& slice);
  std::optional<MeasuredPoint> point_at(const Workspace& workspace, const ScreenPoint& mouse,
                                        const SliceGeometry& geometry) const;
  // None where the surface that the section follows has no depth.
  std::optional<VoxelPoint> place(const Workspace& workspace, const ScreenPoint& mouse,
                                  const SliceGeometry& geometry) const;
  void move_cursor(Workspace& workspace, const ScreenPoint& mouse, const SliceGeometry& geometry) const;

  const SliceAxis axis_;
  std::optional<MeasuredPoint> dragged_;
  bool placing_ = false;  // the button went down to set a point
};

}  // namespace oct::app
