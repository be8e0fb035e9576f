#include "volume/layout/camera.h"

#include <cmath>

#include <glm/gtc/matrix_transform.hpp>

namespace oct {
namespace {

// Near plane 3, far plane 8.
glm::mat4 perspective_projection(double zoom, Viewport viewport) {
  const float field_of_view = static_cast<float>(5.0 + zoom);
  const float t = std::tan(field_of_view / 2.0F * 0.017453292F);
  const float aspect = static_cast<float>(viewport.width) / static_cast<float>(viewport.height);
  glm::mat4 matrix(0.0F);
  matrix[0][0] = 1.0F / (aspect * t);
  matrix[1][1] = 1.0F / t;
  matrix[2][2] = -2.2F;
  matrix[2][3] = -1.0F;
  matrix[3][2] = -9.6F;
  return matrix;
}

glm::mat4 orthographic_projection(double zoom, Viewport viewport) {
  const double q = static_cast<double>(viewport.height) / static_cast<double>(viewport.width);
  glm::dmat4 matrix(1.0);
  matrix[0][0] = 10.0 / zoom;
  matrix[1][1] = 10.0 / (q * zoom);
  matrix[2][2] = -0.1;
  return glm::mat4(matrix);
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
  camera.projection = view.perspective ? perspective_projection(view.zoom, viewport)
                                       : orthographic_projection(view.zoom, viewport);
  glm::mat4 modelview = glm::translate(glm::mat4(1.0F), glm::vec3(0.0F, 0.0F, -5.0F));
  modelview = glm::translate(modelview, view.translation);
  modelview = glm::rotate(modelview, radians_of(view.angle_x), glm::vec3(1.0F, 0.0F, 0.0F));
  modelview = glm::rotate(modelview, radians_of(view.angle_y), glm::vec3(0.0F, 1.0F, 0.0F));
  camera.modelview = glm::scale(modelview, range.model_scale);
  camera.element_modelview = camera.modelview;
  camera.normal = glm::transpose(glm::inverse(glm::mat3(camera.modelview)));
  return camera;
}

}  // namespace oct
