// A colour map in steps so fine that a sample along a ray takes the nearest one.
#pragma once

#include <cstddef>
#include <vector>

#include "gl/colormap.h"

namespace oct {

// Rows of 2048 entries, one behind the other: red, green and blue times opacity, and opacity, from 0 to 1. Entry i
// of n is the map's colour at (i + 0.5) / n. There are as many as it takes for two neighbours to be closer than one
// of 255, 8192 at least and 65536 at most.
struct SampleColors {
  static constexpr std::size_t row = 2048;

  explicit SampleColors(const Colormap& colors);

  std::vector<float> values;
  std::size_t rows() const { return values.size() / (4 * row); }
};

// Their texture.
class SampleColorsTexture {
 public:
  // Uploads them unless they are there. When OpenGL refuses, std::runtime_error is thrown and the next call tries
  // again.
  void upload(const RevisedColormap& colormap);
  void release();
  GLuint get() const { return texture_.get(); }

 private:
  gl::Texture texture_;
  std::uint64_t uploaded_ = 0;  // revision
};

}  // namespace oct
