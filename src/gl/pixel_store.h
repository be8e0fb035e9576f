// Pixel transfer settings of the current context.
#pragma once

#include <array>
#include <optional>

#include "gl/gl.h"

namespace oct::gl {

using PixelSettings = std::array<GLint, 8>;

// Makes uploads read tightly packed client memory: a client's context may carry other settings, or a buffer
// that would turn the pointer into an offset. Every upload calls it: what the client had is saved by the first one.
void reset_pixel_unpack();

// Makes read-backs write tightly packed rows. The pack buffer is the caller's to choose.
void reset_pixel_pack();

// Gives a client's unpack settings and buffer back. While it lives no buffer is bound; the settings are asked for when
// an upload of the same thread changes them, which few frames do.
class ClientUnpack {
 public:
  ClientUnpack();
  ~ClientUnpack();
  ClientUnpack(const ClientUnpack&) = delete;
  ClientUnpack& operator=(const ClientUnpack&) = delete;

 private:
  friend void reset_pixel_unpack();

  ClientUnpack* const outer_;
  GLint buffer_ = 0;
  std::optional<PixelSettings> settings_;
};

// The same for packing, at once.
class ClientPack {
 public:
  ClientPack();
  ~ClientPack();
  ClientPack(const ClientPack&) = delete;
  ClientPack& operator=(const ClientPack&) = delete;

 private:
  GLint buffer_ = 0;
  PixelSettings settings_{};
};

}  // namespace oct::gl
