// Where each view ray leaves the volume: a texture of the viewport's size with positions in texture space.
#pragma once

#include <optional>

#include "gl/gl_names.h"
#include "volume/frame/volume_frame.h"
#include "volume/passes/box.h"
#include "volume/passes/surface.h"

namespace oct {

// A texture that follows the viewport's size.
class ScreenTexture {
 public:
  explicit ScreenTexture(GLint format) : format_(format) {}

  void create();
  void release();
  // True when it was allocated anew.
  bool fit(Viewport viewport);

  GLuint get() const { return texture_.get(); }

 private:
  GLint format_;  // GL_RGBA32F or GL_DEPTH_COMPONENT32F
  gl::Texture texture_;
  Viewport size_;
  bool rebuild_ = true;
};

class BackFaces {
 public:
  void create();
  void release();

  // On the far faces of the box, on the cut where it is seen from behind, or on the surface, whichever comes
  // first. Leaves the draw framebuffer and the viewport as they were.
  void draw(const VolumeFrame& frame, Box& box, gl::Geometry& cut_face, Surface& surface);

  GLuint texture() const { return positions_.get(); }

 private:
  void attach(bool with_depth);
  void draw_volume(const VolumeFrame& frame, Box& box, gl::Geometry& cut_face);

  ScreenTexture positions_{GL_RGBA32F};
  ScreenTexture depth_{GL_DEPTH_COMPONENT32F};  // made for the first surface
  gl::Framebuffer framebuffer_;
  std::optional<bool> attached_;  // with depth or without; none: not what the framebuffer needs
};

}  // namespace oct
