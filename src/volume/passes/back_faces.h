// Where each view ray leaves the volume: a texture of the viewport's size with positions in texture space.
#pragma once

#include "gl/gl_names.h"
#include "volume/frame/volume_frame.h"
#include "volume/passes/box.h"

namespace oct {

class BackFaces {
 public:
  void create();
  void release();

  // Leaves the draw framebuffer and the viewport as they were, and front faces culled.
  void draw(const VolumeFrame& frame, Box& box, gl::Geometry& cut_face);

  GLuint texture() const { return texture_.get(); }

 private:
  void fit(Viewport viewport);
  void attach() const;

  gl::Texture texture_;
  gl::Framebuffer framebuffer_;
  Viewport size_;
  bool rebuild_ = true;
};

}  // namespace oct
