// A lit height map over the two lateral axes.
#pragma once

#include <memory>

#include "gl/geometry.h"
#include "volume/frame/volume_frame.h"

namespace oct {

class Surface {
 public:
  void draw(const VolumeFrame& frame);
  void release();

 private:
  void upload(const std::shared_ptr<const SurfaceMesh>& mesh);

  gl::Geometry geometry_;
  std::shared_ptr<const SurfaceMesh> uploaded_;  // null: nothing that can be drawn
};

}  // namespace oct
