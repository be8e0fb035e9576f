// The three slices through the volume, along model x, y and z.
#pragma once

#include <array>
#include <vector>

#include "gl/geometry.h"
#include "volume/frame/volume_frame.h"
#include "volume/layout/box_view.h"

namespace oct {

struct Section {
  bool shown = true;
  float position = 0.5F;  // 0 to 1
};

using Sections = std::array<Section, 3>;

// The shown slices as triangles, each parted where the others cut it, in such an order that what is farther
// from the eye (model coordinates, homogeneous: w = 0 is a direction) comes first.
std::vector<glm::vec3> section_triangles(const Sections& sections, const glm::vec4& eye);

class SectionalView {
 public:
  // Throws std::invalid_argument and changes nothing when a position is not in 0 to 1.
  void set(const Sections& sections);

  void draw(const VolumeFrame& frame);
  void draw_outline(const VolumeFrame& frame);
  void release();

 private:
  Sections sections_;
  std::array<CrossSection, 3> quads_{};
  gl::Geometry slices_;
  gl::Geometry outlines_;
};

}  // namespace oct
