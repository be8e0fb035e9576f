#include "gl/colormap.h"

#include <cstring>
#include <stdexcept>

#include "gl/pixel_store.h"

namespace oct {

Colormap default_colormap() {
  return {0xFF000000U, 0xFFFFFFFFU};
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
  glTexParameteri(GL_TEXTURE_1D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
  glTexParameteri(GL_TEXTURE_1D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
  glTexParameteri(GL_TEXTURE_1D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
  gl::reset_pixel_unpack();
  glTexImage1D(GL_TEXTURE_1D, 0, GL_RGBA8, static_cast<GLsizei>(colormap.size()), 0, GL_RGBA,
               GL_UNSIGNED_BYTE, colormap.data());
  glBindTexture(GL_TEXTURE_1D, 0);
}

}  // namespace oct
