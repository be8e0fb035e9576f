#include "volume/passes/line_drawing.h"

#include <glm/gtc/type_ptr.hpp>

#include "gl/draw_state.h"

namespace oct {
namespace {

void drawLines(gl::Geometry& geometry, std::span<const glm::vec3> lines) {
  const gl::Blending blending;
  glEnable(GL_LINE_SMOOTH);
  geometry.setVertices(lines);
  geometry.draw(GL_LINES, 0, static_cast<GLsizei>(lines.size()));
  glDisable(GL_LINE_SMOOTH);
}

}  // namespace

void drawModelLines(const VolumeFrame& frame, gl::Geometry& geometry, std::span<const glm::vec3> lines,
                    const glm::vec4& color) {
  useSimpleProgram(frame, color);
  drawLines(geometry, lines);
}

void drawScreenLines(const VolumeFrame& frame, gl::Geometry& geometry, std::span<const glm::vec3> lines,
                     const glm::vec4& color) {
  useSimpleProgram(frame, color);
  constexpr glm::mat4 identity(1.0F);
  glUniformMatrix4fv(frame.programs.simple.modelview, 1, GL_FALSE, glm::value_ptr(identity));
  glUniformMatrix4fv(frame.programs.simple.projection, 1, GL_FALSE, glm::value_ptr(identity));
  drawLines(geometry, lines);
}

}  // namespace oct
