#include "volume/layout/box_view.h"

namespace oct {

glm::vec4 eye_in_model(const Camera& camera) {
  const bool perspective = camera.projection[2][3] != 0.0F;
  return glm::inverse(camera.modelview) * (perspective ? glm::vec4(0, 0, 0, 1) : glm::vec4(0, 0, 1, 0));
}

std::optional<glm::vec3> on_screen(const Camera& camera, const glm::vec3& point) {
  const glm::vec4 clip = camera.projection * camera.modelview * glm::vec4(point, 1.0F);
  if (clip.w <= 0.0F) return std::nullopt;
  const glm::vec3 device = glm::vec3(clip) / clip.w;
  return glm::vec3((device.x + 1.0F) * 0.5F * static_cast<float>(camera.viewport.width),
                   (device.y + 1.0F) * 0.5F * static_cast<float>(camera.viewport.height), device.z);
}

bool faces_viewer(const BoxFace& face, const glm::vec4& eye) {
  return eye[face.axis] * face.side > eye.w;
}

CrossSection cross_section(int axis, float at) {
  CrossSection corners;
  for (std::size_t i = 0; i < corners.size(); ++i) {
    corners[i][axis] = at;
    corners[i][(axis + 1) % 3] = i == 1 || i == 2 ? 1.0F : -1.0F;
    corners[i][(axis + 2) % 3] = i >= 2 ? 1.0F : -1.0F;
  }
  return corners;
}

std::vector<glm::vec3> box_faces(const glm::vec4& eye, bool towards_viewer) {
  std::vector<glm::vec3> triangles;
  for (int axis = 0; axis < 3; ++axis) {
    for (const float side : {-1.0F, 1.0F}) {
      if (faces_viewer({axis, side}, eye) != towards_viewer) continue;
      const CrossSection corners = cross_section(axis, side);
      for (const std::size_t i : {0, 1, 2, 0, 2, 3}) triangles.push_back(corners[i]);
    }
  }
  return triangles;
}

std::vector<glm::vec3> box_edges() {
  // Corners with x slowest and z fastest.
  const auto corner = [](unsigned i) {
    return glm::vec3((i & 4U) != 0 ? 1.0F : -1.0F, (i & 2U) != 0 ? 1.0F : -1.0F,
                     (i & 1U) != 0 ? 1.0F : -1.0F);
  };
  constexpr std::array<unsigned, 24> ends{0, 1, 1, 3, 3, 2, 2, 0, 4, 5, 5, 7,
                                          7, 6, 6, 4, 0, 4, 1, 5, 2, 6, 3, 7};
  std::vector<glm::vec3> lines;
  for (const unsigned end : ends) lines.push_back(corner(end));
  return lines;
}

}  // namespace oct
