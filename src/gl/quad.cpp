#include "gl/quad.h"

#include <array>

#include "core/exception.h"
#include "gl/trace/debugging.h"

namespace oct::gl {

void Quad::create(const char* failure) {
  if (buffer_) return;
  Buffer buffer = Buffer::create();
  if (!buffer) throw OpenGLError(failure);
  VertexArray vertex_array = VertexArray::create();
  if (!vertex_array) throw OpenGLError(failure);
  constexpr std::array<GLfloat, 8> corners{-1, -1, 1, -1, -1, 1, 1, 1};
  glBindVertexArray(vertex_array.get());
  glBindBuffer(GL_ARRAY_BUFFER, buffer.get());
  glBufferData(GL_ARRAY_BUFFER, sizeof corners, corners.data(), GL_STATIC_DRAW);
  glVertexAttribPointer(0, 2, GL_FLOAT, GL_FALSE, 0, nullptr);
  glEnableVertexAttribArray(0);
  label(buffer, "quad");
  label(vertex_array, "quad");
  buffer_ = std::move(buffer);
  vertex_array_ = std::move(vertex_array);
}

void Quad::release() {
  vertex_array_.reset();
  buffer_.reset();
}

void Quad::draw() const {
  glBindVertexArray(vertex_array_.get());
  glDrawArrays(GL_TRIANGLE_STRIP, 0, 4);
}

}  // namespace oct::gl
