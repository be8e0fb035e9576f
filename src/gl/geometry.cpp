#include "gl/geometry.h"

#include <array>
#include <utility>

#include "core/exception.h"
#include "gl/opengl_error.h"
#include "gl/trace/debugging.h"

namespace oct::gl {
namespace {

template <class Name>
void provide(Name& name) {
  if (!name) name = Name::create();
  if (!name) throw OpenGLError("Could not create OpenGL buffer. ");
}

}  // namespace

template <class Vertex>
void Geometry::set(Buffer& buffer, Fields fields, std::span<const Vertex> vertices) {
  if (!buffer || !vertex_array_) describe(buffer, fields, sizeof(Vertex));
  glBindBuffer(GL_ARRAY_BUFFER, buffer.get());
  glBufferData(GL_ARRAY_BUFFER, static_cast<GLsizeiptr>(vertices.size_bytes()), vertices.data(),
               GL_DYNAMIC_DRAW);
  glBindBuffer(GL_ARRAY_BUFFER, 0);
}

// Kept only when OpenGL has accepted it: it is not said again.
void Geometry::describe(Buffer& buffer, Fields fields, GLsizei stride) {
  provide(vertex_array_);
  Buffer described;
  provide(described);
  glBindVertexArray(vertex_array_.get());
  glBindBuffer(GL_ARRAY_BUFFER, described.get());
  for (const Field& field : fields) {
    glVertexAttribPointer(field.attribute, field.components, GL_FLOAT, GL_FALSE, stride,
                          reinterpret_cast<const void*>(field.offset * sizeof(float)));
    glEnableVertexAttribArray(field.attribute);
  }
  label(vertex_array_, what_);
  label(described, what_);
  throwOnGLError("Geometry::describe");
  buffer = std::move(described);
}

void Geometry::set_vertices(std::span<const glm::vec2> vertices) {
  set(vertices_, std::array{Field{0, 2}}, vertices);
}
void Geometry::set_vertices(std::span<const glm::vec3> vertices) {
  set(vertices_, std::array{Field{0, 3}}, vertices);
}
void Geometry::set_vertices(std::span<const PlacedVertex> vertices) {
  set(vertices_, std::array{Field{0, 3}, Field{1, 4, 3}}, vertices);
}
void Geometry::set_attribute(std::span<const glm::vec3> values) {
  set(attribute_, std::array{Field{1, 3}}, values);
}
void Geometry::set_attribute(std::span<const glm::vec4> values) {
  set(attribute_, std::array{Field{1, 4}}, values);
}

void Geometry::set_indices(std::span<const std::uint32_t> indices) {
  provide(vertex_array_);
  provide(indices_);
  glBindVertexArray(vertex_array_.get());
  glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, indices_.get());  // belongs to the vertex array
  label(indices_, what_);
  glBufferData(GL_ELEMENT_ARRAY_BUFFER, static_cast<GLsizeiptr>(indices.size_bytes()), indices.data(),
               GL_DYNAMIC_DRAW);
}

void Geometry::release() {
  vertex_array_.reset();
  vertices_.reset();
  attribute_.reset();
  indices_.reset();
}

void Geometry::bind() const {
  glBindVertexArray(vertex_array_.get());
}

void Geometry::draw(GLenum mode, GLint first, GLsizei count) const {
  bind();
  glDrawArrays(mode, first, count);
}

void Geometry::draw_indexed(GLenum mode, std::size_t first_index, GLsizei count) const {
  bind();
  glDrawElements(mode, count, GL_UNSIGNED_INT,
                 reinterpret_cast<const void*>(first_index * sizeof(std::uint32_t)));
}

}  // namespace oct::gl
