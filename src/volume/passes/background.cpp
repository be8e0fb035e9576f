#include "volume/passes/background.h"

#include <array>

#include "gl/opengl_error.h"

namespace oct {

void Background::set_colors(const glm::vec4& bottom, const glm::vec4& top) {
  changed_ = changed_ || bottom != bottom_ || top != top_;
  bottom_ = bottom;
  top_ = top;
}

void Background::draw(const gl::Shader& program, const glm::mat4& to_target) {
  changed_ = changed_ || to_target != to_target_;
  to_target_ = to_target;
  program.use();
  if (changed_) upload();
  quad_.draw(GL_TRIANGLE_STRIP, 0, 4);
}

void Background::upload() {
  std::array<glm::vec2, 4> corners{{{-1.0F, -1.0F}, {-1.0F, 1.0F}, {1.0F, -1.0F}, {1.0F, 1.0F}}};
  for (glm::vec2& corner : corners) corner = glm::vec2(to_target_ * glm::vec4(corner, 0.0F, 1.0F));
  const std::array<glm::vec4, 4> colors{bottom_, top_, bottom_, top_};
  quad_.set_vertices(corners);
  quad_.set_attribute(colors);
  gl::throwOnGLError("VolumeRenderer::background changed");
  changed_ = false;
}

void Background::release() {
  quad_.release();
  changed_ = true;
}

}  // namespace oct
