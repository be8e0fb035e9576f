// A picture that is shown again while nothing changes: then a frame costs a copy.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <vector>

#include "gl/draw_state.h"
#include "gl/gl_names.h"

namespace oct::gl {

class KeptPicture {
 public:
  // Whether a copy shows in the current draw target what drawing there shows: the target has one sample a pixel and
  // eight bits a channel. Pictures above 4096 pixels a side do not pay: a viewport may be far larger than what
  // it shows of itself. To be asked where no OpenGL error is pending.
  static bool suits_target(GLsizei width, GLsizei height);

  // The internal format of the draw target's depth buffer, with its stencil; GL_NONE without depth, nothing for a
  // format that no texture has.
  static std::optional<GLenum> depth_of_target();

  // Calls draw with the picture as target, in place of what is bound now, and a depth buffer of that format if there is
  // one. What OpenGL says to it is the caller's to ask; after an error release.
  template <class Draw>
  void keep(GLsizei width, GLsizei height, Draw&& draw, GLenum depth = GL_NONE) {
    const DrawTargetGuard target;
    const ScopedDisable whole{GL_SCISSOR_TEST};  // the client's counts in the client's target
    begin(width, height, depth);
    draw();
    kept_ = true;
  }

  // False for a picture that was kept in another context.
  explicit operator bool() const { return kept_ && framebuffer_; }

  // Colours and depth into the draw target, pixel by pixel.
  void copy_to(const std::array<GLint, 4>& viewport) const;

  // Four bytes a pixel, the bottom row first.
  std::vector<std::uint8_t> pixels() const;

  void forget() { kept_ = false; }  // what it shows; the memory serves the next
  void release();

 private:
  void begin(GLsizei width, GLsizei height, GLenum depth);
  void make(GLsizei width, GLsizei height, GLenum depth);

  Framebuffer framebuffer_;
  Texture color_;
  Texture depth_;
  GLsizei width_ = 0;
  GLsizei height_ = 0;
  GLenum depth_format_ = GL_NONE;
  bool kept_ = false;
};

}  // namespace oct::gl
