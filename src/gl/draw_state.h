// Scope guards for state of the current context that a pass changes.
#pragma once

#include <array>
#include <cstddef>

#include "gl/gl.h"

namespace oct::gl {

// Puts back the draw framebuffer and the viewport.
class DrawTargetGuard {
 public:
  DrawTargetGuard() {
    glGetIntegerv(GL_DRAW_FRAMEBUFFER_BINDING, &framebuffer_);
    glGetIntegerv(GL_VIEWPORT, viewport_.data());
  }
  ~DrawTargetGuard() {
    glBindFramebuffer(GL_DRAW_FRAMEBUFFER, static_cast<GLuint>(framebuffer_));
    glViewport(viewport_[0], viewport_[1], viewport_[2], viewport_[3]);
  }
  DrawTargetGuard(const DrawTargetGuard&) = delete;
  DrawTargetGuard& operator=(const DrawTargetGuard&) = delete;

 private:
  GLint framebuffer_ = 0;
  std::array<GLint, 4> viewport_{};
};

// Blends by alpha and leaves an opaque target opaque, so that whoever composites the frame sees no hole where
// something translucent was drawn. At the end blending is off.
class Blending {
 public:
  Blending() {
    glEnable(GL_BLEND);
    glBlendEquation(GL_FUNC_ADD);
    glBlendFuncSeparate(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA, GL_ONE, GL_ONE_MINUS_SRC_ALPHA);
  }
  ~Blending() { glDisable(GL_BLEND); }
  Blending(const Blending&) = delete;
  Blending& operator=(const Blending&) = delete;
};

// Switches capabilities off and, at the end, those that were on, on again.
template <std::size_t Count>
class ScopedDisable {
 public:
  template <class... Capabilities>
  explicit ScopedDisable(Capabilities... capabilities) : capabilities_{static_cast<GLenum>(capabilities)...} {
    for (std::size_t i = 0; i < Count; ++i) {
      was_enabled_[i] = glIsEnabled(capabilities_[i]);
      glDisable(capabilities_[i]);
    }
  }
  ~ScopedDisable() {
    for (std::size_t i = 0; i < Count; ++i) {
      if (was_enabled_[i]) glEnable(capabilities_[i]);
    }
  }
  ScopedDisable(const ScopedDisable&) = delete;
  ScopedDisable& operator=(const ScopedDisable&) = delete;

 private:
  std::array<GLenum, Count> capabilities_;
  std::array<GLboolean, Count> was_enabled_{};
};

template <class... Capabilities>
ScopedDisable(Capabilities...) -> ScopedDisable<sizeof...(Capabilities)>;

}  // namespace oct::gl
