// Colour maps: arrays of 32-bit words, bytes in memory order red, green, blue, alpha.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "gl/gl_names.h"

namespace oct {

using Colormap = std::vector<std::uint32_t>;

constexpr std::uint32_t alpha_of(std::uint32_t color) {
  return color >> 24U;
}

// Whether any colour of it shows.
bool has_opacity(const Colormap& colors);

// Black to white, opaque, in steps that eight bits do not tell apart: what a renderer shows until it is
// given a map.
Colormap default_colormap();

// Copies a client's map. Throws std::invalid_argument for a negative count, and
// for null with a count above zero.
Colormap copy_colormap(const void* colors, int count);

// Uploads the map as a one-dimensional RGBA8 texture, making the texture if there is none. Linear between
// entries, clamped at both ends. Texture unit 0 is used and left without a 1-D texture.
void upload_colormap(gl::Texture& texture, const Colormap& colormap);

// A map with the number of its change, by which a texture tells whether it holds it.
class RevisedColormap {
 public:
  void set(Colormap colors);  // one without entries shows nothing
  const Colormap& colors() const { return *colors_; }
  std::uint64_t revision() const { return revision_; }

  // Of two states of one map.
  bool operator==(const RevisedColormap& other) const { return revision_ == other.revision_; }

 private:
  // Shared, so that a frame's copy costs no more than a pointer.
  std::shared_ptr<const Colormap> colors_ = std::make_shared<const Colormap>(default_colormap());
  std::uint64_t revision_ = 1;
};

// The texture of a map that changes.
class ColormapTexture {
 public:
  // Uploads the map unless it is there; true when it did. When OpenGL refuses, an OpenGLError is thrown
  // and the next call tries again.
  bool upload(const RevisedColormap& colormap);
  void release();
  GLuint get() const { return texture_.get(); }

 private:
  gl::Texture texture_;
  std::uint64_t uploaded_ = 0;  // revision
};

}  // namespace oct
