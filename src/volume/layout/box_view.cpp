#include "volume/layout/box_view.h"

namespace oct {

glm::vec4 eye_in_model(const Camera& camera) {
  const bool perspective = camera.projection[2][3] != 0.0F;
  return glm::inverse(camera.modelview) * (perspective ? glm::vec4(0, 0, 0, 1) : glm::vec4(0, 0, 1, 0));
}

std::vector<glm::vec3> face_before_eye(const FilledBox& box, const Camera& camera) {
  const glm::vec4 eye = eye_in_model(camera);
  if (eye.w == 0.0F || !box.contains(glm::vec3(eye))) return {};
  // A plane's coefficients go the other way than points do.
  return box.cut(glm::transpose(camera.modelview) * glm::vec4(0.0F, 0.0F, -1.0F, -sight_begins)).face;
}

std::optional<glm::vec3> on_screen(const Camera& camera, const glm::vec3& point) {
  const glm::vec4 clip = camera.whole_projection * camera.modelview * glm::vec4(point, 1.0F);
  if (clip.w <= 0.0F) return std::nullopt;
  const glm::vec3 device = glm::vec3(clip) / clip.w;
  return glm::vec3((device.x + 1.0F) * 0.5F * static_cast<float>(camera.viewport.width),
                   (device.y + 1.0F) * 0.5F * static_cast<float>(camera.viewport.height), device.z);
}

bool faces_viewer(const BoxFace& face, const glm::vec4& eye) {
  return eye[face.axis] * face.side > eye.w;
}

std::vector<glm::vec3> box_faces(const glm::vec4& eye, bool towards_viewer) {
  std::vector<glm::vec3> triangles;
  for (int axis = 0; axis < 3; ++axis) {
    for (const float side : {-1.0F, 1.0F}) {
      if (faces_viewer({axis, side}, eye) != towards_viewer) continue;
      const CrossSection corners = FilledBox().cross_section(axis, side);
      for (const std::size_t i : {0, 1, 2, 0, 2, 3}) triangles.push_back(corners[i]);
    }
  }
  return triangles;
}

std::vector<glm::vec3> box_edges(const glm::vec4& eye, bool towards_viewer) {
  std::vector<glm::vec3> lines;
  for (int axis = 0; axis < 3; ++axis) {
    for (const float at : {-1.0F, 1.0F}) {
      // Each edge along the second axis from here is one of this face's.
      const int second = (axis + 1) % 3;
      const int third = (axis + 2) % 3;
      for (const float side : {-1.0F, 1.0F}) {
        const bool towards = faces_viewer({axis, at}, eye) || faces_viewer({third, side}, eye);
        if (towards != towards_viewer) continue;
        glm::vec3 end;
        end[axis] = at;
        end[third] = side;
        for (const float along : {-1.0F, 1.0F}) {
          end[second] = along;
          lines.push_back(end);
        }
      }
    }
  }
  return lines;
}

}  // namespace oct
