#include "volume/passes/background.h"

#include <array>

namespace oct {

void Background::set_colors(const glm::vec4& bottom, const glm::vec4& top) {
  changed_ = changed_ || bottom != bottom_ || top != top_;
  bottom_ = bottom;
  top_ = top;
}

void Background::draw(const gl::Shader& program) {
  program.use();
  if (changed_ || !quad_) {
    const std::array<glm::vec2, 4> corners{{{-1.0F, -1.0F}, {-1.0F, 1.0F}, {1.0F, -1.0F}, {1.0F, 1.0F}}};
    const std::array<glm::vec4, 4> colors{bottom_, top_, bottom_, top_};
    quad_.set_vertices(corners);
    quad_.set_attribute(colors);
    changed_ = false;
  }
  glDisable(GL_DEPTH_TEST);
  glDisable(GL_BLEND);
  glDisable(GL_CULL_FACE);
  quad_.draw(GL_TRIANGLE_STRIP, 0, 4);
}

void Background::release() {
  quad_.release();
  changed_ = true;
}

}  // namespace oct
