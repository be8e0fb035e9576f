// The three slices through the volume, along model x, y and z.
#pragma once

#include <vector>

#include "gl/geometry.h"
#include "volume/frame/volume_frame.h"
#include "volume/layout/sections.h"

namespace oct {

class SectionalView {
 public:
  void draw(const VolumeFrame& frame);
  // In place of the picture, where a pixel shows a slice (Raycaster::pick).
  void pick(const VolumeFrame& frame);
  void draw_outline(const VolumeFrame& frame);
  void release();

 private:
  void draw_slices(const VolumeFrame& frame, bool picking);

  gl::Geometry slices_{"slices"};
  gl::Geometry outlines_{"outlines of slices"};
};

}  // namespace oct
