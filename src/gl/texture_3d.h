// A 3-D texture of floats in one channel, with the limits of the driver checked before it is asked for
// memory.
#pragma once

#include <cstdint>

#include "gl/gl_names.h"

namespace oct::gl {

// The first axis is the fastest in memory.
struct Extent3D {
  std::int64_t width = 0;
  std::int64_t height = 0;
  std::int64_t depth = 0;

  bool operator==(const Extent3D&) const = default;
  bool empty() const { return width < 1 || height < 1 || depth < 1; }
};

class Texture3D {
 public:
  // Throws std::invalid_argument for negative extents and for more than the driver holds, naming both.
  static void require(const Extent3D& extent, GLenum internalFormat);

  // A new texture of undefined contents, or of the given data; the one before is deleted first. After a
  // failure (std::runtime_error) there is no texture. Leaves it bound at unit 0.
  void allocate(const Extent3D& extent, GLenum internalFormat, const char* checkpoint,
                const float* data = nullptr);

  // Leaves the texture bound at unit 0.
  void bind() const;

  // Copies `count` slices from first on, one call per slice. The texture must be bound at unit 0.
  void uploadSlices(std::int64_t first, std::int64_t count, const float* data) const;

  void reset();

  GLuint get() const { return texture_.get(); }
  const Extent3D& extent() const { return extent_; }
  explicit operator bool() const { return static_cast<bool>(texture_); }

 private:
  Texture texture_;
  Extent3D extent_;
};

}  // namespace oct::gl
