// The OpenGL objects of live volumes: the texture that is drawn and the two unpack buffers that feed it.
#pragma once

#include <array>

#include "gl/texture_3d.h"
#include "live/volume_hand_over.h"

namespace oct {

// Rendering thread only. While one buffer is being written to, the driver may still read the other one.
class VolumeUpload {
 public:
  // New storage of undefined contents. Buffers must be unmapped.
  void allocate(const VolumeExtent& extent);
  void allocate_secondary();
  void release();

  // Writable memory of the buffer whose turn it is; null when the driver gives none. A fresh mapping gives
  // the buffer new storage first, so that the driver never waits for what still reads the old one.
  float* map();
  float* map_fresh();
  // Gives the memory back to the driver, unused.
  void unmap();

  // Gives the memory back and copies it into the texture; the other buffer's turn comes. False when the
  // driver lost what was written, which leaves the texture as it was.
  bool upload();
  void upload_secondary(const VolumeHandOver::Secondary& secondary);

  GLuint volume() const { return volume_.get(); }
  GLuint secondary() const { return secondary_.get(); }
  const gl::SliceRevisions& revisions() const { return volume_.revisions(); }
  const VolumeExtent& extent() const { return volume_.extent(); }

 private:
  void respecify(const gl::Buffer& buffer) const;

  gl::Texture3D volume_;
  gl::Texture secondary_;
  std::array<gl::Buffer, 2> buffers_;
  std::size_t current_ = 0;
};

}  // namespace oct
