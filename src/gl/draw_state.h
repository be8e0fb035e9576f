// Scope guards for state of the current context that a pass changes.
#pragma once

#include <array>
#include <cstddef>

#include "gl/gl.h"

namespace oct::gl {

// Puts back the draw framebuffer and the viewport.
class DrawTargetGuard {
 public:
  DrawTargetGuard() { glGetIntegerv(GL_VIEWPORT, viewport_.data()); }
  ~DrawTargetGuard() {
    glBindFramebuffer(GL_DRAW_FRAMEBUFFER, static_cast<GLuint>(framebuffer_));
    glViewport(viewport_[0], viewport_[1], viewport_[2], viewport_[3]);
  }
  DrawTargetGuard(const DrawTargetGuard&) = delete;
  DrawTargetGuard& operator=(const DrawTargetGuard&) = delete;

 private:
  const GLint framebuffer_ = integer(GL_DRAW_FRAMEBUFFER_BINDING);
  std::array<GLint, 4> viewport_{};
};

// The guards below switch things on and off again. What is behind a switch (functions, offsets, the order of
// corners) stays as the last of them named it: each names its own, and the client's come back at the end of the call.

// Blends by alpha and leaves an opaque target opaque, so that whoever composites the frame sees no hole where
// something translucent was drawn.
class Blending {
 public:
  Blending() {
    glEnable(GL_BLEND);
    glBlendFuncSeparate(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA, GL_ONE, GL_ONE_MINUS_SRC_ALPHA);
  }
  ~Blending() { glDisable(GL_BLEND); }
  Blending(const Blending&) = delete;
  Blending& operator=(const Blending&) = delete;
};

class SmoothLines {
 public:
  SmoothLines() { glEnable(GL_LINE_SMOOTH); }
  ~SmoothLines() { glDisable(GL_LINE_SMOOTH); }
  SmoothLines(const SmoothLines&) = delete;
  SmoothLines& operator=(const SmoothLines&) = delete;
};

// What lies beyond the near or the far plane is drawn as if it lay on it.
class DepthClamp {
 public:
  DepthClamp() { glEnable(GL_DEPTH_CLAMP); }
  ~DepthClamp() { glDisable(GL_DEPTH_CLAMP); }
  DepthClamp(const DepthClamp&) = delete;
  DepthClamp& operator=(const DepthClamp&) = delete;
};

// Draws into a part of the target only.
class Scissor {
 public:
  Scissor(GLint x, GLint y, GLsizei width, GLsizei height) {
    glGetIntegerv(GL_SCISSOR_BOX, before_.data());
    glEnable(GL_SCISSOR_TEST);
    glScissor(x, y, width, height);
  }
  ~Scissor() {
    glScissor(before_[0], before_[1], before_[2], before_[3]);
    glDisable(GL_SCISSOR_TEST);
  }
  Scissor(const Scissor&) = delete;
  Scissor& operator=(const Scissor&) = delete;

 private:
  std::array<GLint, 4> before_{};
};

// Moves polygons away from the eye, so that lines on them are seen.
class PolygonOffset {
 public:
  PolygonOffset(float factor, float units) {
    glEnable(GL_POLYGON_OFFSET_FILL);
    glPolygonOffset(factor, units);
  }
  ~PolygonOffset() { glDisable(GL_POLYGON_OFFSET_FILL); }
  PolygonOffset(const PolygonOffset&) = delete;
  PolygonOffset& operator=(const PolygonOffset&) = delete;
};

// The depth state of a pass. Outside of passes nothing is tested; what clears the depth needs writes on.
class DepthTest {
 public:
  explicit DepthTest(GLenum function, bool writes = false) : writes_(writes) {
    glEnable(GL_DEPTH_TEST);
    glDepthFunc(function);
    if (!writes_) glDepthMask(GL_FALSE);
  }
  ~DepthTest() {
    if (!writes_) glDepthMask(GL_TRUE);
    glDisable(GL_DEPTH_TEST);
  }
  DepthTest(const DepthTest&) = delete;
  DepthTest& operator=(const DepthTest&) = delete;

 private:
  bool writes_;
};

// Leaves out one side of what is drawn. The front has its corners in the given order, GL_CCW or GL_CW.
class FaceCulling {
 public:
  FaceCulling(GLenum culled, GLenum front) {
    glFrontFace(front);
    glCullFace(culled);
    glEnable(GL_CULL_FACE);
  }
  ~FaceCulling() { glDisable(GL_CULL_FACE); }
  FaceCulling(const FaceCulling&) = delete;
  FaceCulling& operator=(const FaceCulling&) = delete;
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
