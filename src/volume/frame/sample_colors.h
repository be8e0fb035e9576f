// A colour map in steps so fine that a sample along a ray takes the nearest one.
#pragma once

#include <cstddef>
#include <vector>

#include "gl/colormap.h"

namespace oct {

// What the fourth component of a sample's colour is.
enum class SampleOpacity {
  of_a_step,   // opacity, from 0 to 1, with which the colours are multiplied
  of_a_length  // logarithm (of 2) of what a length lets through; the colours are not multiplied
};

// Rows of 2048 entries, one behind the other: red, green, blue, from 0 to 1, and opacity. Entry i
// of n is the map's colour at (i + 0.5) / n. There are as many as it takes for two neighbours to be closer than one
// of 255, 8192 at least and 65536 at most.
struct SampleColors {
  static constexpr std::size_t row = 2048;

  explicit SampleColors(const Colormap& colors, SampleOpacity opacity = SampleOpacity::of_a_step);

  std::vector<float> values;
  std::size_t rows() const { return values.size() / (4 * row); }
};

// Their texture.
class SampleColorsTexture {
 public:
  // Uploads them unless they are there. When OpenGL refuses, an OpenGLError is thrown and the next call tries
  // again.
  void upload(const RevisedColormap& colormap, SampleOpacity opacity);
  void release();
  GLuint get() const { return texture_.get(); }

 private:
  gl::Texture texture_;
  std::uint64_t uploaded_ = 0;  // revision
  SampleOpacity opacity_ = SampleOpacity::of_a_step;
};

}  // namespace oct
