// What a viewer sees of the volume box. Model coordinates; no OpenGL.
#pragma once

#include <array>
#include <optional>
#include <vector>

#include <glm/glm.hpp>

#include "volume/layout/camera.h"

namespace oct {

// The viewer, homogeneous: with an orthographic projection a direction (w = 0).
glm::vec4 eye_in_model(const Camera& camera);

// Position in pixels from the viewport's lower left corner, and depth in normalised device coordinates; none
// for what is not before the viewer.
std::optional<glm::vec3> on_screen(const Camera& camera, const glm::vec3& point);

// Corners of the box's cross-section at a place on an axis, in order around it.
using CrossSection = std::array<glm::vec3, 4>;
CrossSection cross_section(int axis, float at);

struct BoxFace {
  int axis = 0;
  float side = 1.0F;  // -1 or 1
};

bool faces_viewer(const BoxFace& face, const glm::vec4& eye);

// The faces that look towards the viewer, or those that look away, as triangles.
std::vector<glm::vec3> box_faces(const glm::vec4& eye, bool towards_viewer);

// The twelve edges, as pairs: around the face x = -1, around the face x = 1, and between the two.
std::vector<glm::vec3> box_edges();

}  // namespace oct
