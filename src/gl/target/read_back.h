// Pixels of a framebuffer, read back in the order that a client wants them in.
#pragma once

#include "gl/gl_names.h"

namespace oct::gl {

// Eight bits a channel, tightly packed. The numbers are those of the clients.
enum class PixelFormat : int { bgra = 0, rgba = 1, bgra_top_down = 2, rgba_top_down = 3 };

// Throws std::invalid_argument "Invalid pixel format selected. " for any other number.
PixelFormat pixel_format_of(int value);

// Reads frames of one target after the other. OpenGL's first row is the bottom one; for the others to come first, no pixel
// passes through the processor a second time: Mesa's drivers write the rows in the other order, for others the graphics
// card copies the picture upside down before it is read. (Not the other way round: on llvmpipe such a copy takes ten
// times as long as reading, rows one by one or turned on the processor twice as long; benchmarks/RESULTS.md.)
class ReadBack {
 public:
  // The first colour attachment, into client memory or, with a pack buffer bound, to an offset in that.
  void read(const Framebuffer& framebuffer, GLsizei width, GLsizei height, PixelFormat format,
            void* destination);

  void release();  // what it keeps for the next frame of the same size

 private:
  void copy_upside_down(const Framebuffer& framebuffer, GLsizei width, GLsizei height);

  Framebuffer copy_;
  Renderbuffer color_;
  GLsizei width_ = 0;
  GLsizei height_ = 0;
};

}  // namespace oct::gl
