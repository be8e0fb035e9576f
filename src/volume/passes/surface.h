// A lit height map over the two lateral axes.
#pragma once

#include <memory>

#include "gl/geometry.h"
#include "volume/frame/volume_frame.h"

namespace oct {

// The frame must show one (VolumeFrame::surface_shown).
class Surface {
 public:
  void draw(const VolumeFrame& frame);
  // Where it ends rays, into a target of positions in texture space.
  void draw_back(const VolumeFrame& frame);
  void release();

 private:
  void draw_mesh(const VolumeFrame& frame);
  void upload(const std::shared_ptr<const SurfaceMesh>& mesh);

  gl::Geometry geometry_{"surface"};
  std::shared_ptr<const SurfaceMesh> uploaded_;  // null: nothing that can be drawn
};

}  // namespace oct
