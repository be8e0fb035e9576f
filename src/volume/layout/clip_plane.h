// The plane that cuts the volume box, and where it meets the box. Model coordinates; no OpenGL.
#pragma once

#include <vector>

#include <glm/glm.hpp>

#include "volume/layout/camera.h"
#include "volume/layout/filled_box.h"

namespace oct {

struct ClipPlaneSettings {
  bool enabled = false;
  bool open_cut = false;  // the face of the cut is not drawn
  bool fixed = false;     // keeps its orientation while the camera turns
  float value = 0.0F;     // 0 to 1 from the far to the near corner of the box

  bool operator==(const ClipPlaneSettings&) const = default;
};

class ClipPlane {
 public:
  // Once per frame, after the camera. A plane that is not fixed turns to face the viewer; one that was fixed
  // before its first frame takes that frame's orientation.
  void update(const ClipPlaneSettings& settings, const View& view, const FilledBox& box);

  bool enabled() const { return settings_.enabled; }
  bool open_cut() const { return settings_.open_cut; }

  // A point p is kept where dot(plane, (p, 1)) >= 0. All zero, which keeps
  // everything, while the plane is off.
  glm::vec4 plane() const { return enabled() ? plane_ : glm::vec4(0.0F); }

  const std::vector<glm::vec3>& border() const { return cut_.border; }  // pairs: GL_LINES
  // Triples: GL_TRIANGLES, in both windings.
  const std::vector<glm::vec3>& cut_face() const { return cut_.face; }

 private:
  void orient(const View& view);

  ClipPlaneSettings settings_;
  bool oriented_ = false;
  glm::vec4 plane_{0.0F};
  PlaneCut cut_;
};

}  // namespace oct
