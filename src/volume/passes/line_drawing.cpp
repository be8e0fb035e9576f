#include "volume/passes/line_drawing.h"

#include <glm/gtc/type_ptr.hpp>

#include "gl/draw_state.h"

namespace oct {
namespace {

void draw_lines(gl::Geometry& geometry, std::span<const glm::vec3> lines) {
  const gl::Blending blending;
  glEnable(GL_LINE_SMOOTH);
  geometry.set_vertices(lines);
  geometry.draw(GL_LINES, 0, static_cast<GLsizei>(lines.size()));
  glDisable(GL_LINE_SMOOTH);
}

}  // namespace

void draw_model_lines(const VolumeFrame& frame, gl::Geometry& geometry, std::span<const glm::vec3> lines,
                      const glm::vec4& color) {
  use_simple_program(frame, color);
  draw_lines(geometry, lines);
}

void draw_screen_lines(const VolumeFrame& frame, gl::Geometry& geometry, std::span<const glm::vec3> lines,
                       const glm::vec4& color) {
  use_simple_program(frame, color);
  constexpr glm::mat4 identity(1.0F);
  glUniformMatrix4fv(frame.programs.simple().modelview, 1, GL_FALSE, glm::value_ptr(identity));
  glUniformMatrix4fv(frame.programs.simple().projection, 1, GL_FALSE, glm::value_ptr(identity));
  draw_lines(geometry, lines);
}

}  // namespace oct
