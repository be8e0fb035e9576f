// The three slices through the volume, along model x, y and z.
#pragma once

#include <vector>

#include "gl/geometry.h"
#include "volume/frame/volume_frame.h"
#include "volume/layout/sections.h"

namespace oct {

// The shown slices as triangles, each parted where the others cut it, in such an order that what is farther
// from the eye (model coordinates, homogeneous: w = 0 is a direction) comes first.
std::vector<glm::vec3> section_triangles(const Sections& sections, const glm::vec4& eye);

class SectionalView {
 public:
  void draw(const VolumeFrame& frame);
  void draw_outline(const VolumeFrame& frame);
  void release();

 private:
  gl::Geometry slices_;
  gl::Geometry outlines_;
};

}  // namespace oct
