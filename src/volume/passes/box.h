// The faces of the filled part of a volume's box.
#pragma once

#include <optional>

#include "gl/geometry.h"
#include "volume/layout/filled_box.h"

namespace oct {

class Box {
 public:
  // The faces look outwards where the model is mirrored along one axis, as a range mirrors depth.
  void draw(const FilledBox& box);
  void release();

 private:
  void upload(const FilledBox& box);

  gl::Geometry geometry_{"box"};
  std::optional<float> end_;  // of the geometry; none until it is uploaded
};

}  // namespace oct
