// Where view rays meet the surface: a texture of the target's size with positions in texture space.
#pragma once

#include <optional>

#include "gl/gl_names.h"
#include "volume/frame/volume_frame.h"
#include "volume/passes/surface.h"

namespace oct {

// A texture that follows the viewport's size.
class ScreenTexture {
 public:
  explicit ScreenTexture(GLint format) : format_(format) {}

  void release();
  void fit(Viewport viewport);

  GLuint get() const { return texture_.get(); }

 private:
  GLint format_;  // GL_RGBA32F or GL_DEPTH_COMPONENT32F
  gl::Texture texture_;
  Viewport size_;
  bool rebuild_ = true;
};

class SurfacePositions {
 public:
  void release();

  // Those that are nearest to the viewer, with 1 as fourth component, and 0 where there is no surface. Leaves the draw
  // framebuffer and the viewport as they were.
  void draw(const VolumeFrame& frame, Surface& surface);

  // One of those that were drawn last; none where there is no surface.
  std::optional<glm::vec3> at(const glm::uvec2& pixel) const;

  GLuint texture() const { return positions_.get(); }

 private:
  void attach() const;

  ScreenTexture positions_{GL_RGBA32F};
  ScreenTexture depth_{GL_DEPTH_COMPONENT32F};
  gl::Framebuffer framebuffer_;
};

}  // namespace oct
