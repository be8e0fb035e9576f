#include "gl/colormap.h"

#include <algorithm>
#include <cstring>
#include <stdexcept>
#include <utility>

#include "core/exception.h"
#include "gl/opengl_error.h"
#include "gl/pixel_store.h"
#include "gl/trace/debugging.h"

namespace oct {

Colormap default_colormap() {
  Colormap colors;
  for (std::uint32_t grey = 0; grey < 256; ++grey) colors.push_back(0xFF000000U | grey * 0x010101U);
  return colors;
}

bool has_opacity(const Colormap& colors) {
  return std::ranges::any_of(colors, [](std::uint32_t color) { return alpha_of(color) != 0; });
}

Colormap copy_colormap(const void* colors, int count) {
  if (count < 0) throw std::invalid_argument("The number of colours must not be negative. ");
  if (!colors && count > 0) throw std::invalid_argument("Colour map data must not be null. ");
  Colormap colormap(static_cast<std::size_t>(count));
  if (count > 0) std::memcpy(colormap.data(), colors, colormap.size() * sizeof(Colormap::value_type));
  return colormap;
}

void upload_colormap(gl::Texture& texture, const Colormap& colormap) {
  glActiveTexture(GL_TEXTURE0);
  if (!texture) texture = gl::Texture::create();
  glBindTexture(GL_TEXTURE_1D, texture.get());
  gl::label(texture, "colour map");
  glTexParameteri(GL_TEXTURE_1D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
  glTexParameteri(GL_TEXTURE_1D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
  glTexParameteri(GL_TEXTURE_1D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
  gl::reset_pixel_unpack();
  glTexImage1D(GL_TEXTURE_1D, 0, GL_RGBA8, static_cast<GLsizei>(colormap.size()), 0, GL_RGBA,
               GL_UNSIGNED_BYTE, colormap.data());
  glBindTexture(GL_TEXTURE_1D, 0);
}

void RevisedColormap::set(Colormap colors) {
  if (colors.empty()) colors = {0U};
  colors_ = std::make_shared<const Colormap>(std::move(colors));
  ++revision_;
}

bool ColormapTexture::upload(const RevisedColormap& colormap) {
  if (texture_ && uploaded_ == colormap.revision()) return false;
  uploaded_ = 0;  // the texture is about to be spoilt
  if (!texture_) texture_ = gl::Texture::create();
  if (!texture_) throw OpenGLError("Invalid texture for rendering....");
  upload_colormap(texture_, colormap.colors());
  gl::throwOnGLError("render: colormap changed");
  uploaded_ = colormap.revision();
  return true;
}

void ColormapTexture::release() {
  texture_.reset();
  uploaded_ = 0;
}

}  // namespace oct
