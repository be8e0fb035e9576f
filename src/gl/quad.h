// The full-screen quad that every two-dimensional pass draws.
#pragma once

#include "gl/gl_names.h"

namespace oct::gl {

class Quad {
 public:
  // Throws an OpenGLError with the given text when OpenGL gives no buffer.
  // Does nothing when already made.
  void create(const char* failure);
  void release();

  // Four vertices at the corners of the square from -1 to 1, as a triangle strip; attribute 0 of the program.
  void draw() const;

 private:
  Buffer buffer_;
  VertexArray vertex_array_;
};

}  // namespace oct::gl
