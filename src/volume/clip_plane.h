// The plane that cuts the volume box, and where it meets the box. Model coordinates; no OpenGL.
#pragma once

#include <glm/glm.hpp>

#include <vector>

#include "volume/camera.h"

namespace oct {

class ClipPlane {
 public:
  void set(bool enabled, bool secondFlag, float value);
  void setFixed(bool fixed) { fixed_ = fixed; }

  // Once per frame, after the camera.
  void update(const View& view);

  bool enabled() const { return enabled_; }
  bool secondFlag() const { return secondFlag_; }  // leaves the cut open

  // A point p is kept where dot(plane, (p, 1)) >= 0. All zero, which keeps everything, while the plane is
  // off.
  glm::vec4 plane() const { return enabled_ ? plane_ : glm::vec4(0.0F); }

  const std::vector<glm::vec3>& intersections() const { return intersections_; }
  const std::vector<glm::vec3>& border() const { return border_; }    // pairs: GL_LINES
  const std::vector<glm::vec3>& cutFace() const { return cutFace_; }  // triples: GL_TRIANGLES

 private:
  bool enabled_ = false;
  bool secondFlag_ = false;
  bool fixed_ = false;
  float value_ = 0.0F;
  glm::vec4 plane_{0.0F};
  std::vector<glm::vec3> intersections_;
  std::vector<glm::vec3> border_;
  std::vector<glm::vec3> cutFace_;
};

}  // namespace oct
