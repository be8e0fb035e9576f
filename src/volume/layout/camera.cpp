#include "volume/layout/camera.h"

#include <glm/gtc/matrix_transform.hpp>

#include <cmath>

namespace oct {
namespace {

constexpr float pi = 3.1415927F;

// Near plane 3, far plane 8.
glm::mat4 perspectiveProjection(double zoom, Viewport viewport) {
  const float fieldOfView = static_cast<float>(5.0 + zoom);
  const float t = std::tan(fieldOfView / 2.0F * 0.017453292F);
  const float aspect = static_cast<float>(viewport.width) / static_cast<float>(viewport.height);
  glm::mat4 matrix(0.0F);
  matrix[0][0] = 1.0F / (aspect * t);
  matrix[1][1] = 1.0F / t;
  matrix[2][2] = -2.2F;
  matrix[2][3] = -1.0F;
  matrix[3][2] = -9.6F;
  return matrix;
}

glm::mat4 orthographicProjection(double zoom, Viewport viewport) {
  const double q = static_cast<double>(viewport.height) / static_cast<double>(viewport.width);
  glm::dmat4 matrix(1.0);
  matrix[0][0] = 10.0 / zoom;
  matrix[1][1] = 10.0 / (q * zoom);
  matrix[2][2] = -0.1;
  return glm::mat4(matrix);
}

}  // namespace

Range rangeOf(double axial, double lateral1, double lateral2) {
  const double s = 1.0 / (0.5 * std::sqrt(axial * axial + lateral1 * lateral1 + lateral2 * lateral2));
  return {glm::vec3(glm::dvec3(axial, lateral1, lateral2)),
          glm::vec3(glm::dvec3(lateral1 * s, -axial * s, lateral2 * s))};
}

double wrappedAngle(double degrees) {
  if (std::abs(degrees) <= 180.0) return degrees;
  const double wrapped = std::fmod(degrees, 360.0);
  if (wrapped > 180.0) return wrapped - 360.0;
  if (wrapped < -180.0) return wrapped + 360.0;
  return wrapped;
}

Camera cameraOf(const View& view, const Range& range, Viewport viewport) {
  Camera camera;
  camera.viewport = viewport;
  camera.projection = view.perspective ? perspectiveProjection(view.zoom, viewport)
                                       : orthographicProjection(view.zoom, viewport);
  glm::mat4 modelview = glm::translate(glm::mat4(1.0F), glm::vec3(0.0F, 0.0F, -5.0F));
  modelview = glm::translate(modelview, view.translation);
  modelview = glm::rotate(modelview, view.angleX * pi / 180.0F, glm::vec3(1.0F, 0.0F, 0.0F));
  modelview = glm::rotate(modelview, view.angleY * pi / 180.0F, glm::vec3(0.0F, 1.0F, 0.0F));
  camera.modelview = glm::scale(modelview, range.modelScale);
  camera.elementModelview = camera.modelview;
  camera.normal = glm::transpose(glm::inverse(glm::mat3(camera.modelview)));
  return camera;
}

}  // namespace oct
