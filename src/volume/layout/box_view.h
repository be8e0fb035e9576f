// What a viewer sees of the whole volume box. Model coordinates; no OpenGL.
#pragma once

#include <optional>
#include <vector>

#include <glm/glm.hpp>

#include "volume/layout/camera.h"
#include "volume/layout/filled_box.h"

namespace oct {

// The viewer, homogeneous: with an orthographic projection a direction (w = 0).
glm::vec4 eye_in_model(const Camera& camera);

// What of the box a perspective viewer within it has right before the eye, as triangles in both windings;
// nothing where the viewer is outside.
std::vector<glm::vec3> face_before_eye(const FilledBox& box, const Camera& camera);

// Position in pixels from the viewport's lower left corner, and depth in normalised device coordinates; none
// for what is not before the viewer.
std::optional<glm::vec3> on_screen(const Camera& camera, const glm::vec3& point);

struct BoxFace {
  int axis = 0;
  float side = 1.0F;  // -1 or 1
};

bool faces_viewer(const BoxFace& face, const glm::vec4& eye);

// The faces that look towards the viewer, or those that look away, as triangles.
std::vector<glm::vec3> box_faces(const glm::vec4& eye, bool towards_viewer);

// Of the twelve edges those that look towards the viewer, the box's outline among them, or those that lie
// behind the box, as pairs.
std::vector<glm::vec3> box_edges(const glm::vec4& eye, bool towards_viewer);

}  // namespace oct
