// Move-only owners of OpenGL names. The library's only places that create or delete an OpenGL object.
#pragma once

#include <utility>

#include "gl/context/context_identity.h"
#include "gl/gl.h"

namespace oct::gl {

// Owns one name in the context that was current when it was made. In any other context the same number names
// somebody else's object: there the owner counts as empty and deletes nothing. A name that is reset while its
// context is gone or not current is given up and dies with it.
template <class Kind>
class Name {
 public:
  Name() = default;
  Name(Name&& other) noexcept
      : name_(std::exchange(other.name_, 0)), context_(std::exchange(other.context_, no_context)) {}
  Name& operator=(Name&& other) noexcept {
    if (this != &other) {
      reset();
      name_ = std::exchange(other.name_, 0);
      context_ = std::exchange(other.context_, no_context);
    }
    return *this;
  }
  ~Name() { reset(); }

  // Empty when OpenGL gives none, or is too old to tell its contexts apart.
  template <class... Arguments>
  static Name create(Arguments... arguments) {
    Name result;
    result.context_ = require_identity();
    if (result.context_ != no_context) result.name_ = Kind::create(arguments...);
    return result;
  }

  void reset() {
    if (*this) Kind::destroy(name_);
    name_ = 0;
    context_ = no_context;
  }

  // 0 and false for an empty owner, and where another context is current.
  GLuint get() const { return *this ? name_ : 0; }
  explicit operator bool() const { return name_ != 0 && context_ == current_identity(); }

 private:
  GLuint name_ = 0;
  ContextIdentity context_ = no_context;
};

struct TextureKind {
  static constexpr GLenum identifier = GL_TEXTURE;
  static GLuint create() {
    GLuint name = 0;
    glGenTextures(1, &name);
    return name;
  }
  static void destroy(GLuint name) { glDeleteTextures(1, &name); }
};

struct BufferKind {
  static constexpr GLenum identifier = GL_BUFFER;
  static GLuint create() {
    GLuint name = 0;
    glGenBuffers(1, &name);
    return name;
  }
  static void destroy(GLuint name) { glDeleteBuffers(1, &name); }
};

struct VertexArrayKind {
  static constexpr GLenum identifier = GL_VERTEX_ARRAY;
  static GLuint create() {
    GLuint name = 0;
    glGenVertexArrays(1, &name);
    return name;
  }
  static void destroy(GLuint name) { glDeleteVertexArrays(1, &name); }
};

struct FramebufferKind {
  static constexpr GLenum identifier = GL_FRAMEBUFFER;
  static GLuint create() {
    GLuint name = 0;
    glGenFramebuffers(1, &name);
    return name;
  }
  static void destroy(GLuint name) { glDeleteFramebuffers(1, &name); }
};

struct RenderbufferKind {
  static constexpr GLenum identifier = GL_RENDERBUFFER;
  static GLuint create() {
    GLuint name = 0;
    glGenRenderbuffers(1, &name);
    return name;
  }
  static void destroy(GLuint name) { glDeleteRenderbuffers(1, &name); }
};

struct ShaderObjectKind {
  static constexpr GLenum identifier = GL_SHADER;
  static GLuint create(GLenum stage) { return glCreateShader(stage); }
  static void destroy(GLuint name) { glDeleteShader(name); }
};

struct ProgramKind {
  static constexpr GLenum identifier = GL_PROGRAM;
  static GLuint create() { return glCreateProgram(); }
  static void destroy(GLuint name) { glDeleteProgram(name); }
};

struct QueryKind {
  static constexpr GLenum identifier = GL_QUERY;
  static GLuint create() {
    GLuint name = 0;
    glGenQueries(1, &name);
    return name;
  }
  static void destroy(GLuint name) { glDeleteQueries(1, &name); }
};

using Texture = Name<TextureKind>;
using Buffer = Name<BufferKind>;
using VertexArray = Name<VertexArrayKind>;
using Framebuffer = Name<FramebufferKind>;
using Renderbuffer = Name<RenderbufferKind>;
using ShaderObject = Name<ShaderObjectKind>;
using Program = Name<ProgramKind>;
using Query = Name<QueryKind>;

}  // namespace oct::gl
