// A volume in a texture, with the maxima of its bricks.
#pragma once

#include <memory>
#include <string_view>

#include "gl/texture_3d.h"
#include "volume/skipping/brick_maxima.h"

namespace oct {

// As gl::Texture3D, of the thread that owns the context.
class VolumeTexture {
 public:
  void allocate(const VolumeExtent& extent, GLenum internal_format, const char* checkpoint);
  [[nodiscard]] gl::Texture3D::Binding bind() const { return texture_.bind(); }
  void upload_b_scans(std::int64_t first, std::int64_t count, const float* data, const char* checkpoint);
  void label(std::string_view text) const { texture_.label(text); }
  void reset();

  GLuint get() const { return texture_.get(); }
  const VolumeExtent& extent() const { return texture_.extent(); }
  std::shared_ptr<const gl::SliceRevisions> revisions() const { return texture_.revisions(); }
  BrickMaxima* maxima() { return maxima_.get(); }
  explicit operator bool() const { return static_cast<bool>(texture_); }

 private:
  gl::Texture3D texture_;
  std::unique_ptr<BrickMaxima> maxima_;
};

}  // namespace oct
