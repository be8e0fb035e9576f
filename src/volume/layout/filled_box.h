// The part of the volume box that holds data, and where planes meet it. Model coordinates; no OpenGL.
#pragma once

#include <array>
#include <vector>

#include <glm/glm.hpp>

namespace oct {

// Corners of the box's cross-section at a place on an axis, in order around it.
using CrossSection = std::array<glm::vec3, 4>;

// Where a plane cuts the box.
struct PlaneCut {
  std::vector<glm::vec3> border;  // pairs: GL_LINES, each once
  std::vector<glm::vec3> face;    // triples: GL_TRIANGLES, each in both windings
};

// The box with corners at -1 and 1, which ends earlier along z while the volume is being filled. Everything
// that is drawn of the volume itself gets its shape here, so that nothing shows voxels that were never
// uploaded.
class FilledBox {
 public:
  // At an end of -1 or less nothing is filled.
  explicit FilledBox(float end = 1.0F) : end_(end) {}

  // Of a volume of which a fraction of its parts along z is filled: it ends at the centre of the last of
  // them, so that nothing beyond it is interpolated.
  static FilledBox of(float fraction, int parts);

  float end() const { return end_; }
  bool empty() const { return !(end_ > -1.0F); }
  bool reaches(int axis, float at) const { return !empty() && at >= -1.0F && at <= ends(axis).y; }
  bool contains(const glm::vec3& point) const;

  CrossSection cross_section(int axis, float at) const;

  // A plane (a, b, c, d) that misses the box, or touches it with a face, an edge or a corner, cuts nothing.
  PlaneCut cut(const glm::vec4& plane) const;

  // The faces of what the plane cuts off, as triangles; every point p in them has dot(plane, (p, 1)) <= 0.
  // The cut itself stays open.
  std::vector<glm::vec3> removed_faces(const glm::vec4& plane) const;

 private:
  // The box's low and high end along an axis.
  glm::vec2 ends(int axis) const { return {-1.0F, axis == 2 ? end_ : 1.0F}; }
  std::vector<glm::vec3> intersections(const glm::vec4& plane) const;
  bool on_one_face(const std::vector<glm::vec3>& points) const;
  bool on_common_face(const glm::vec3& p, const glm::vec3& q) const;

  float end_;
};

}  // namespace oct
