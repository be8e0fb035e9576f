// The OpenGL objects of live volumes: the texture that is drawn and the two unpack buffers that feed it.
#pragma once

#include <array>
#include <vector>

#include "gl/fence.h"
#include "gl/texture_3d.h"

namespace oct {

// Rendering thread only. While one buffer is being written to, the driver may still read the other one.
class VolumeUpload {
 public:
  // New storage of undefined contents. Buffers must be unmapped.
  void allocate(const VolumeExtent& extent);
  void allocate_secondary();
  void release();

  // Whether the driver has read the buffer whose turn it is, which is then mapped without waiting.
  bool is_free() const;
  // Writable memory of the buffer whose turn it is; null when the driver gives none.
  float* map();
  // Gives the memory back to the driver, unused.
  void unmap();

  // Gives the memory back, and the other buffer's turn comes. False when the driver lost what was written.
  bool take_back();
  // Copies what was taken back last into the texture. Throws what OpenGL refuses, by the checkpoint's name.
  void upload(const char* checkpoint);
  // `width` values for every A-scan; without any the texture stays as it was.
  void upload_secondary(const std::vector<float>& values, std::int32_t width);

  GLuint volume() const { return volume_.get(); }
  GLuint secondary() const { return secondary_.get(); }
  std::shared_ptr<const gl::SliceRevisions> revisions() const { return volume_.revisions(); }
  const VolumeExtent& extent() const { return volume_.extent(); }

 private:
  struct UploadBuffer {
    gl::Buffer name;
    gl::Fence read;  // behind the latest copy into the texture
  };
  GLsizeiptr bytes() const;
  std::size_t other() const { return 1 - current_; }

  gl::Texture3D volume_;
  gl::Texture secondary_;
  std::array<UploadBuffer, 2> buffers_;
  std::size_t current_ = 0;
};

}  // namespace oct
