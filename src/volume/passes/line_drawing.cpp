#include "volume/passes/line_drawing.h"

#include "gl/draw_state.h"

namespace oct {

void draw_model_lines(const VolumeFrame& frame, gl::Geometry& geometry, std::span<const glm::vec3> lines,
                      const glm::vec4& color) {
  use_simple_program(frame, color);
  const gl::Blending blending;
  const gl::SmoothLines smooth;
  geometry.set_vertices(lines);
  geometry.draw(GL_LINES, 0, static_cast<GLsizei>(lines.size()));
}

}  // namespace oct
