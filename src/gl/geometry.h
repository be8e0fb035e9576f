// Vertices of one pass: positions, at most one more attribute, and indices where the pass wants them.
#pragma once

#include <cstdint>
#include <span>

#include <glm/glm.hpp>

#include "gl/gl_names.h"

namespace oct::gl {

// Positions with something else of each in one buffer.
struct PlacedVertex {
  glm::vec3 position;  // attribute 0
  glm::vec4 value;     // attribute 1
};

class Geometry {
 public:
  explicit Geometry(const char* what) : what_(what) {}  // for debuggers

  // Attribute 0. The first call makes the buffer and says what is in it, which later calls replace by more of the same
  // kind. Throws OpenGLError "Could not create OpenGL buffer. " when OpenGL gives none. What OpenGL says to the
  // contents is the caller's to ask.
  void set_vertices(std::span<const glm::vec2> vertices);
  void set_vertices(std::span<const glm::vec3> vertices);
  void set_vertices(std::span<const PlacedVertex> vertices);

  // Attribute 1, one per vertex.
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
  // Of a vertex in a buffer, in floats.
  struct Field {
    GLuint attribute;
    GLint components;
    std::size_t offset = 0;
  };
  using Fields = std::span<const Field>;

  template <class Vertex>
  void set(Buffer& buffer, Fields fields, std::span<const Vertex> vertices);
  void describe(Buffer& buffer, Fields fields, GLsizei stride);

  const char* const what_;
  Buffer vertices_;
  Buffer attribute_;
  Buffer indices_;
  VertexArray vertex_array_;
};

}  // namespace oct::gl
