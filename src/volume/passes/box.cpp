#include "volume/passes/box.h"

#include <array>

#include "gl/opengl_error.h"

namespace oct {

void Box::draw(const FilledBox& box) {
  if (box.end() != end_) upload(box);
  geometry_.draw_indexed(GL_TRIANGLES, 0, 36);
}

void Box::upload(const FilledBox& box) {
  end_.reset();
  // Corners with x slowest and z fastest.
  std::array<glm::vec3, 8> corners;
  for (unsigned i = 0; i < 8; ++i) {
    corners[i] = {(i & 4U) != 0 ? 1.0F : -1.0F, (i & 2U) != 0 ? 1.0F : -1.0F,
                  (i & 1U) != 0 ? box.end() : -1.0F};
  }
  constexpr std::array<std::uint32_t, 36> faces{
      0, 2, 1, 1, 2, 3,  // x = -1
      4, 5, 6, 6, 5, 7,  // x = 1
      0, 1, 4, 4, 1, 5,  // y = -1
      2, 6, 3, 3, 6, 7,  // y = 1
      0, 4, 2, 2, 4, 6,  // z = -1
      1, 3, 5, 5, 3, 7,  // z = end
  };
  geometry_.set_vertices(corners);
  geometry_.set_indices(faces);
  gl::throwOnGLError("VolumeRenderer::box changed");
  end_ = box.end();
}

void Box::release() {
  geometry_.release();
  end_.reset();
}

}  // namespace oct
