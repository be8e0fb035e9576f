// A 3-D texture of floats in one channel, with the limits of the driver checked
// before it is asked for memory.
#pragma once

#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

#include "core/extent.h"
#include "gl/gl_names.h"
#include "gl/slice_revisions.h"

namespace oct::gl {

class Texture3D {
 public:
  // Throws std::invalid_argument for negative extents and for more than the driver holds, naming both.
  static void require(const VolumeExtent& extent, GLenum internal_format);

  // A new texture of undefined contents, or of the given data, in place of the one before. After a failure
  // (MemoryError, OpenGLError) everything is as it was. Leaves it bound at unit 0.
  void allocate(const VolumeExtent& extent, GLenum internal_format, const char* checkpoint,
                const float* data = nullptr);

  // Bound at unit 0 as long as it lives, and nothing after it.
  class Binding {
   public:
    ~Binding() { glBindTexture(GL_TEXTURE_3D, 0); }
    Binding(const Binding&) = delete;
    Binding& operator=(const Binding&) = delete;

   private:
    friend class Texture3D;
    explicit Binding(GLuint texture);
  };
  [[nodiscard]] Binding bind() const { return Binding(texture_.get()); }

  // Copies `count` B-scans from first on, one call for each. The texture must be bound at unit 0. Throws what
  // OpenGL refuses: the B-scans before that one have changed, and no other.
  void upload_b_scans(std::int64_t first, std::int64_t count, const float* data, const char* checkpoint);
  // For those who copy the whole texture themselves.
  void all_changed() { revisions_->changed(0, revisions_->count()); }
  // Of the texture that there is, which alone owns them: they end with it. Null without one.
  std::shared_ptr<const SliceRevisions> revisions() const { return revisions_; }

  void label(std::string_view text) const;  // for debuggers
  void reset();

  GLuint get() const { return texture_.get(); }
  const VolumeExtent& extent() const { return extent_; }
  explicit operator bool() const { return static_cast<bool>(texture_); }

 private:
  Texture texture_;
  VolumeExtent extent_;
  std::shared_ptr<SliceRevisions> revisions_;
  std::vector<std::uint16_t> halves_;  // one B-scan on its way into a texture of half floats
};

}  // namespace oct::gl
