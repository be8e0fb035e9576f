// The plane that cuts the volume box, and where it meets the box. Model coordinates; no OpenGL.
#pragma once

#include <vector>

#include <glm/glm.hpp>

#include "volume/layout/camera.h"

namespace oct {

// Where a plane (a, b, c, d) meets the twelve edges of the box: the edges along x
// first, then those along y and z.
std::vector<glm::vec3> box_intersections(const glm::vec4& plane);

// The faces of what the plane cuts off the box, as triangles; every point p in them has dot(plane, (p, 1)) <=
// 0. The cut itself stays open.
std::vector<glm::vec3> removed_faces(const glm::vec4& plane);

struct ClipPlaneSettings {
  bool enabled = false;
  bool open_cut = false;  // the face of the cut is not drawn
  bool fixed = false;     // keeps its orientation while the camera turns
  float value = 0.0F;     // 0 to 1 from the far to the near corner of the box
};

class ClipPlane {
 public:
  // Once per frame, after the camera. A plane that is not fixed turns to face the viewer. One that is fixed
  // before its first frame has no orientation to keep: it stays zero and cuts nothing.
  void update(const ClipPlaneSettings& settings, const View& view);

  bool enabled() const { return settings_.enabled; }
  bool open_cut() const { return settings_.open_cut; }

  // A point p is kept where dot(plane, (p, 1)) >= 0. All zero, which keeps
  // everything, while the plane is off.
  glm::vec4 plane() const { return enabled() ? plane_ : glm::vec4(0.0F); }

  const std::vector<glm::vec3>& intersections() const { return intersections_; }
  const std::vector<glm::vec3>& border() const { return border_; }  // pairs: GL_LINES
  const std::vector<glm::vec3>& cut_face() const {
    return cut_face_;
  }  // triples: GL_TRIANGLES, in both windings

 private:
  void orient(const View& view);
  void connect_intersections();
  bool found_before(std::size_t index) const;  // whether an earlier intersection is the same point

  ClipPlaneSettings settings_;
  glm::vec4 plane_{0.0F};
  std::vector<glm::vec3> intersections_;
  std::vector<glm::vec3> border_;
  std::vector<glm::vec3> cut_face_;
};

}  // namespace oct
