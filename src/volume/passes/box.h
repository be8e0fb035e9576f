// The box of a volume: the cube with corners at -1 and 1, shorter along z while the volume is being filled.
#pragma once

#include <optional>

#include "gl/geometry.h"

namespace oct {

class Box {
 public:
  // The faces look outwards where the model is mirrored along one axis, as a range mirrors depth.
  void draw(float end);
  void release();

 private:
  void upload(float end);

  gl::Geometry geometry_;
  std::optional<float> end_;  // of the geometry; none until it is uploaded
};

// Where a box with a filled fraction ends: at the centre of the last of `parts` filled, so that nothing
// beyond it is interpolated.
float filled_end(float fraction, int parts);

}  // namespace oct
