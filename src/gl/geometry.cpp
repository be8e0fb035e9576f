#include "gl/geometry.h"

#include <stdexcept>

namespace oct::gl {
namespace {

Buffer newBuffer() {
  Buffer buffer = Buffer::create();
  if (!buffer) throw std::runtime_error("Could not create OpenGL buffer. ");
  return buffer;
}

}  // namespace

void Geometry::setVertices(std::span<const glm::vec2> vertices) {
  set(vertices_, 0, 2, vertices.data(), vertices.size_bytes());
}
void Geometry::setVertices(std::span<const glm::vec3> vertices) {
  set(vertices_, 0, 3, vertices.data(), vertices.size_bytes());
}
void Geometry::setAttribute(std::span<const glm::vec2> values) {
  set(attribute_, 1, 2, values.data(), values.size_bytes());
}
void Geometry::setAttribute(std::span<const glm::vec3> values) {
  set(attribute_, 1, 3, values.data(), values.size_bytes());
}
void Geometry::setAttribute(std::span<const glm::vec4> values) {
  set(attribute_, 1, 4, values.data(), values.size_bytes());
}

void Geometry::set(Buffer& buffer, GLuint attribute, GLint components, const void* data, std::size_t bytes) {
  if (!vertexArray_) vertexArray_ = VertexArray::create();
  if (!buffer) buffer = newBuffer();
  glBindVertexArray(vertexArray_.get());
  glBindBuffer(GL_ARRAY_BUFFER, buffer.get());
  glBufferData(GL_ARRAY_BUFFER, static_cast<GLsizeiptr>(bytes), data, GL_DYNAMIC_DRAW);
  glVertexAttribPointer(attribute, components, GL_FLOAT, GL_FALSE, 0, nullptr);
  glEnableVertexAttribArray(attribute);
  glBindVertexArray(0);
  glBindBuffer(GL_ARRAY_BUFFER, 0);
}

void Geometry::setIndices(std::span<const std::uint32_t> indices) {
  if (!vertexArray_) vertexArray_ = VertexArray::create();
  if (!indices_) indices_ = newBuffer();
  glBindVertexArray(vertexArray_.get());
  glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, indices_.get());  // belongs to the vertex array
  glBufferData(GL_ELEMENT_ARRAY_BUFFER, static_cast<GLsizeiptr>(indices.size_bytes()), indices.data(),
               GL_DYNAMIC_DRAW);
  glBindVertexArray(0);
  glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, 0);
}

void Geometry::release() {
  vertexArray_.reset();
  vertices_.reset();
  attribute_.reset();
  indices_.reset();
}

void Geometry::draw(GLenum mode, GLint first, GLsizei count) const {
  glBindVertexArray(vertexArray_.get());
  glDrawArrays(mode, first, count);
  glBindVertexArray(0);
}

void Geometry::drawIndexed(GLenum mode, std::size_t firstIndex, GLsizei count) const {
  glBindVertexArray(vertexArray_.get());
  glDrawElements(mode, count, GL_UNSIGNED_INT,
                 reinterpret_cast<const void*>(firstIndex * sizeof(std::uint32_t)));
  glBindVertexArray(0);
}

}  // namespace oct::gl
