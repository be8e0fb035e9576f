// The two-coloured background of a volume frame.
#pragma once

#include "gl/geometry.h"
#include "gl/shader.h"

namespace oct {

class Background {
 public:
  void set_colors(const glm::vec4& bottom, const glm::vec4& top);
  // to_target: from device coordinates of the picture that it fills.
  void draw(const gl::Shader& program, const glm::mat4& to_target);
  void release();

 private:
  void upload();

  gl::Geometry quad_{"background"};
  glm::vec4 bottom_{0.0F};
  glm::vec4 top_{0.0F};
  glm::mat4 to_target_{1.0F};
  bool changed_ = true;
};

}  // namespace oct
