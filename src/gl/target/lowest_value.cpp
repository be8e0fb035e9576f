#include "gl/target/lowest_value.h"

#include <algorithm>
#include <limits>
#include <vector>

#include "gl/target/float_pixel.h"
#include "vec/vec.h"

namespace oct::gl {

std::optional<float> lowest_value(GLuint texture, GLsizei width, GLsizei height, GLint slices) {
  constexpr float none = std::numeric_limits<float>::infinity();
  std::vector<float> values(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
  const Framebuffer framebuffer = Framebuffer::create();
  const FloatReading reading(framebuffer);
  float lowest = none;
  for (GLint slice = 0; slice < slices; ++slice) {
    glFramebufferTextureLayer(GL_READ_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, texture, 0, slice);
    if (glCheckFramebufferStatus(GL_READ_FRAMEBUFFER) != GL_FRAMEBUFFER_COMPLETE) return std::nullopt;
    glReadPixels(0, 0, width, height, GL_RED, GL_FLOAT, values.data());
    lowest = std::min(lowest, vec::extremes(values.data(), values.size()).lowest);
  }
  if (lowest == none) return std::nullopt;
  return lowest;
}

}  // namespace oct::gl
