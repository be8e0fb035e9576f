// A 3-D texture of floats in one channel, with the limits of the driver checked
// before it is asked for memory.
#pragma once

#include <cstdint>

#include "core/extent.h"
#include "gl/gl_names.h"

namespace oct::gl {

class Texture3D {
 public:
  // Throws std::invalid_argument for negative extents and for more than the driver holds, naming both.
  static void require(const VolumeExtent& extent, GLenum internal_format);

  // A new texture of undefined contents, or of the given data; the one before is deleted first. After a
  // failure (std::runtime_error) there is no texture. Leaves it bound at unit 0.
  void allocate(const VolumeExtent& extent, GLenum internal_format, const char* checkpoint,
                const float* data = nullptr);

  // Leaves the texture bound at unit 0.
  void bind() const;

  // Copies `count` B-scans from first on, one call for each. The texture must be bound at unit 0.
  void upload_b_scans(std::int64_t first, std::int64_t count, const float* data) const;

  void reset();

  GLuint get() const { return texture_.get(); }
  const VolumeExtent& extent() const { return extent_; }
  explicit operator bool() const { return static_cast<bool>(texture_); }

 private:
  Texture texture_;
  VolumeExtent extent_;
};

}  // namespace oct::gl
