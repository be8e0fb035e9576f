#include "volume/layout/camera.h"

#include <algorithm>
#include <cmath>

#include <glm/gtc/matrix_transform.hpp>

namespace oct {
namespace {

// Distances before the viewer.
struct DepthPlanes {
  double near_plane;
  double far_plane;
};

// Moves the planes apart where the box reaches beyond them, so that depths of what is in it differ everywhere.
DepthPlanes around_box(DepthPlanes planes, const glm::mat4& modelview) {
  for (unsigned i = 0; i < 8; ++i) {
    const glm::vec4 corner((i & 4U) != 0 ? 1.0F : -1.0F, (i & 2U) != 0 ? 1.0F : -1.0F,
                           (i & 1U) != 0 ? 1.0F : -1.0F, 1.0F);
    const double distance = -static_cast<double>((modelview * corner).z);
    planes.near_plane = std::min(planes.near_plane, distance);
    planes.far_plane = std::max(planes.far_plane, distance);
  }
  return planes;
}

glm::mat4 perspective_projection(double zoom, Viewport viewport, const glm::mat4& modelview) {
  const float field_of_view = static_cast<float>(5.0 + zoom);
  const float t = std::tan(field_of_view / 2.0F * 0.017453292F);
  const float aspect = static_cast<float>(viewport.width) / static_cast<float>(viewport.height);
  auto [near_plane, far_plane] = around_box({3.0, 8.0}, modelview);
  near_plane = std::max(near_plane, 0.05);  // before the eye itself there is no plane
  glm::mat4 matrix(0.0F);
  matrix[0][0] = 1.0F / (aspect * t);
  matrix[1][1] = 1.0F / t;
  matrix[2][2] = static_cast<float>(-(far_plane + near_plane) / (far_plane - near_plane));
  matrix[2][3] = -1.0F;
  matrix[3][2] = static_cast<float>(-2.0 * far_plane * near_plane / (far_plane - near_plane));
  return matrix;
}

glm::mat4 orthographic_projection(double zoom, Viewport viewport, const glm::mat4& modelview) {
  const double q = static_cast<double>(viewport.height) / static_cast<double>(viewport.width);
  const auto [near_plane, far_plane] = around_box({-10.0, 10.0}, modelview);
  glm::dmat4 matrix(1.0);
  matrix[0][0] = 10.0 / zoom;
  matrix[1][1] = 10.0 / (q * zoom);
  matrix[2][2] = -2.0 / (far_plane - near_plane);
  matrix[3][2] = -(far_plane + near_plane) / (far_plane - near_plane);
  return glm::mat4(matrix);
}

// A device or a client may give an extent of 0. The viewer of a flat box would have no place in it, and rays no
// direction.
glm::vec3 not_flat(glm::vec3 scale) {
  constexpr float least = 1e-5F;
  for (int axis = 0; axis < 3; ++axis) {
    if (std::abs(scale[axis]) < least) scale[axis] = std::copysign(least, scale[axis]);
  }
  return scale;
}

}  // namespace

Range range_of(double axial, double lateral1, double lateral2) {
  const double s = 1.0 / (0.5 * std::sqrt(axial * axial + lateral1 * lateral1 + lateral2 * lateral2));
  return {glm::vec3(glm::dvec3(axial, lateral1, lateral2)),
          glm::vec3(glm::dvec3(lateral1 * s, -axial * s, lateral2 * s))};
}

double wrapped_angle(double degrees) {
  if (std::abs(degrees) <= 180.0) return degrees;
  const double wrapped = std::fmod(degrees, 360.0);
  if (wrapped > 180.0) return wrapped - 360.0;
  if (wrapped < -180.0) return wrapped + 360.0;
  return wrapped;
}

Camera camera_of(const View& view, const Range& range, Viewport viewport) {
  Camera camera;
  camera.viewport = viewport;
  camera.target = viewport;
  glm::mat4 modelview = glm::translate(glm::mat4(1.0F), glm::vec3(0.0F, 0.0F, -5.0F));
  modelview = glm::translate(modelview, view.translation);
  modelview = glm::rotate(modelview, radians_of(view.angle_x), glm::vec3(1.0F, 0.0F, 0.0F));
  modelview = glm::rotate(modelview, radians_of(view.angle_y), glm::vec3(0.0F, 1.0F, 0.0F));
  camera.modelview = glm::scale(modelview, not_flat(range.model_scale));
  camera.element_modelview = camera.modelview;
  camera.whole_projection = view.perspective ? perspective_projection(view.zoom, viewport, camera.modelview)
                                             : orthographic_projection(view.zoom, viewport, camera.modelview);
  camera.projection = camera.whole_projection;
  camera.normal = glm::transpose(glm::inverse(glm::mat3(camera.modelview)));
  return camera;
}

Camera camera_of(const View& view, const Range& range, const PicturePart& part, Viewport target) {
  Camera camera = camera_of(view, range, {part.width, part.height});
  camera.target = target;
  camera.first_pixel = {part.x, part.y};
  const auto [scale, offset] = part.to_target(target.width, target.height);
  for (int axis = 0; axis < 2; ++axis) {
    camera.to_target[axis][axis] = scale[static_cast<std::size_t>(axis)];
    camera.to_target[3][axis] = offset[static_cast<std::size_t>(axis)];
  }
  camera.projection = camera.to_target * camera.whole_projection;
  return camera;
}

}  // namespace oct
