#include "gl/pixel_store.h"

#include <cstddef>

namespace oct::gl {
namespace {

using Names = std::array<GLenum, 8>;

constexpr Names unpack_names{GL_UNPACK_SWAP_BYTES,   GL_UNPACK_LSB_FIRST, GL_UNPACK_ROW_LENGTH,
                             GL_UNPACK_IMAGE_HEIGHT, GL_UNPACK_SKIP_ROWS, GL_UNPACK_SKIP_PIXELS,
                             GL_UNPACK_SKIP_IMAGES,  GL_UNPACK_ALIGNMENT};
constexpr Names pack_names{GL_PACK_SWAP_BYTES, GL_PACK_LSB_FIRST,   GL_PACK_ROW_LENGTH,  GL_PACK_IMAGE_HEIGHT,
                           GL_PACK_SKIP_ROWS,  GL_PACK_SKIP_PIXELS, GL_PACK_SKIP_IMAGES, GL_PACK_ALIGNMENT};
constexpr PixelSettings initial{0, 0, 0, 0, 0, 0, 0, 4};

// Of the thread that uploads.
thread_local ClientUnpack* innermost = nullptr;

PixelSettings current(const Names& names) {
  PixelSettings settings{};
  for (std::size_t i = 0; i < names.size(); ++i) settings[i] = integer(names[i]);
  return settings;
}

void set(const Names& names, const PixelSettings& settings) {
  for (std::size_t i = 0; i < names.size(); ++i) glPixelStorei(names[i], settings[i]);
}

}  // namespace

void reset_pixel_unpack() {
  if (innermost && !innermost->settings_) innermost->settings_ = current(unpack_names);
  glBindBuffer(GL_PIXEL_UNPACK_BUFFER, 0);
  set(unpack_names, initial);
}

void reset_pixel_pack() {
  set(pack_names, initial);
}

ClientUnpack::ClientUnpack() : outer_(innermost), buffer_(integer(GL_PIXEL_UNPACK_BUFFER_BINDING)) {
  innermost = this;
  if (buffer_ != 0) glBindBuffer(GL_PIXEL_UNPACK_BUFFER, 0);
}

ClientUnpack::~ClientUnpack() {
  innermost = outer_;
  glBindBuffer(GL_PIXEL_UNPACK_BUFFER, static_cast<GLuint>(buffer_));
  if (settings_) set(unpack_names, *settings_);
}

ClientPack::ClientPack() : buffer_(integer(GL_PIXEL_PACK_BUFFER_BINDING)), settings_(current(pack_names)) {
  glBindBuffer(GL_PIXEL_PACK_BUFFER, 0);
}

ClientPack::~ClientPack() {
  set(pack_names, settings_);
  glBindBuffer(GL_PIXEL_PACK_BUFFER, static_cast<GLuint>(buffer_));
}

}  // namespace oct::gl
