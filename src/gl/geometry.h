// Vertices of one pass: positions, at most one more attribute, and indices where the pass wants them.
#pragma once

#include <cstdint>
#include <span>

#include <glm/glm.hpp>

#include "gl/gl_names.h"

namespace oct::gl {

class Geometry {
 public:
  // Attribute 0. The first call makes the buffer and says what is in it; throws std::runtime_error, "Could not create
  // OpenGL buffer. " when OpenGL gives none. Later calls replace the contents. What OpenGL says to them is the
  // caller's to ask.
  void set_vertices(std::span<const glm::vec2> vertices);
  void set_vertices(std::span<const glm::vec3> vertices);

  // Attribute 1, one per vertex.
  void set_attribute(std::span<const glm::vec2> values);
  void set_attribute(std::span<const glm::vec3> values);
  void set_attribute(std::span<const glm::vec4> values);

  void set_indices(std::span<const std::uint32_t> indices);

  void release();

  // Binds the vertices, for several draws one after the other.
  void bind() const;

  // Binds and draws. The vertices stay bound.
  void draw(GLenum mode, GLint first, GLsizei count) const;
  void draw_indexed(GLenum mode, std::size_t first_index, GLsizei count) const;

 private:
  void set(Buffer& buffer, GLuint attribute, GLint components, const void* data, std::size_t bytes);
  void describe(Buffer& buffer, GLuint attribute, GLint components);

  Buffer vertices_;
  Buffer attribute_;
  Buffer indices_;
  VertexArray vertex_array_;
};

}  // namespace oct::gl
