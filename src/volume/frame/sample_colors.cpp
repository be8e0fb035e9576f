#include "volume/frame/sample_colors.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdlib>

#include "core/exception.h"
#include "gl/opengl_error.h"
#include "gl/pixel_store.h"
#include "gl/trace/debugging.h"

namespace oct {
namespace {

using Color = std::array<float, 4>;

constexpr std::size_t fewest = 8192;
constexpr std::size_t most = 65536;

// What is opaque stays so in any step that can be told from none.
constexpr float opaque_logarithm = -1e9F;

Color color_of(std::uint32_t bytes) {
  Color color;
  for (std::size_t i = 0; i < color.size(); ++i)
    color[i] = static_cast<float>(bytes >> (8 * i) & 0xFFU) / 255.0F;
  return color;
}

// The largest difference of two neighbours in one channel, from 0 to 255.
int steepest(const Colormap& colors) {
  int largest = 0;
  for (std::size_t i = 1; i < colors.size(); ++i) {
    for (unsigned shift = 0; shift < 32; shift += 8) {
      const auto one = static_cast<int>(colors[i - 1] >> shift & 0xFFU);
      const auto other = static_cast<int>(colors[i] >> shift & 0xFFU);
      largest = std::max(largest, std::abs(one - other));
    }
  }
  return largest;
}

}  // namespace

SampleColors::SampleColors(const Colormap& colors, SampleOpacity opacity) {
  const std::size_t needed = colors.size() * static_cast<std::size_t>(steepest(colors));
  const std::size_t count = std::bit_ceil(std::clamp(needed, fewest, most));
  const auto last = static_cast<double>(colors.size() - 1);
  values.reserve(4 * count);
  for (std::size_t i = 0; i < count; ++i) {
    const double share = (static_cast<double>(i) + 0.5) / static_cast<double>(count);
    const double position = std::clamp(share * static_cast<double>(colors.size()) - 0.5, 0.0, last);
    const double below = std::floor(position);
    const Color one = color_of(colors[static_cast<std::size_t>(below)]);
    const Color other = color_of(colors[static_cast<std::size_t>(std::min(below + 1.0, last))]);
    const auto weight = static_cast<float>(position - below);
    const auto mixed = [&](std::size_t c) { return one[c] + weight * (other[c] - one[c]); };
    const bool of_a_step = opacity == SampleOpacity::of_a_step;
    for (std::size_t c = 0; c < 3; ++c) values.push_back(of_a_step ? mixed(c) * mixed(3) : mixed(c));
    values.push_back(of_a_step ? mixed(3) : std::max(std::log2(1.0F - mixed(3)), opaque_logarithm));
  }
}

void SampleColorsTexture::upload(const RevisedColormap& colormap, SampleOpacity opacity) {
  if (texture_ && uploaded_ == colormap.revision() && opacity_ == opacity) return;
  uploaded_ = 0;  // the texture is about to be spoilt
  if (!texture_) texture_ = gl::Texture::create();
  if (!texture_) throw OpenGLError("Invalid texture for rendering....");
  const SampleColors colors(colormap.colors(), opacity);
  glActiveTexture(GL_TEXTURE0);
  glBindTexture(GL_TEXTURE_2D, texture_.get());
  gl::label(texture_, "colours of samples");
  for (const GLenum filter : {GL_TEXTURE_MIN_FILTER, GL_TEXTURE_MAG_FILTER})
    glTexParameteri(GL_TEXTURE_2D, filter, GL_NEAREST);
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAX_LEVEL, 0);
  gl::reset_pixel_unpack();
  glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA32F, static_cast<GLsizei>(SampleColors::row),
               static_cast<GLsizei>(colors.rows()), 0, GL_RGBA, GL_FLOAT, colors.values.data());
  glBindTexture(GL_TEXTURE_2D, 0);
  gl::throwOnGLError("render: colormap changed");
  uploaded_ = colormap.revision();
  opacity_ = opacity;
}

void SampleColorsTexture::release() {
  texture_.reset();
  uploaded_ = 0;
}

}  // namespace oct
