#include "volume/skipping/volume_texture.h"

#include "volume/skipping/visibility.h"

namespace oct {
namespace {

// Of a cube. Smaller bricks find more that is empty, and their tables cost more. Of very many B-scans the tables of
// all limits, one behind the other, would be deeper than the driver allows a texture to be.
int brick_side(const VolumeExtent& extent) {
  constexpr int side = 4;
  const GLint deepest = gl::integer(GL_MAX_3D_TEXTURE_SIZE);
  const std::int64_t tables = 2 * Visibility::most_limits * (extent.b_scans / side + 1);
  return tables > deepest ? 2 * side : side;
}

}  // namespace

void VolumeTexture::allocate(const VolumeExtent& extent, GLenum internal_format, const char* checkpoint) {
  gl::Texture3D::require(extent, internal_format);
  auto maxima = std::make_unique<BrickMaxima>(
      extent, brick_side(extent),
      internal_format == GL_R16F ? BrickTexture::edges_in_half_float : BrickTexture::edges);
  texture_.allocate(extent, internal_format, checkpoint);
  maxima_ = std::move(maxima);
}

// A slice that OpenGL refused may have changed or not.
void VolumeTexture::upload_b_scans(std::int64_t first, std::int64_t count, const float* data,
                                   const char* checkpoint) {
  const std::int64_t voxels = extent().depth * extent().a_scans;
  for (std::int64_t k = first; k < first + count; ++k, data += voxels) {
    maxima_->forget(k, k + 1);
    texture_.upload_b_scans(k, 1, data, checkpoint);
    maxima_->take_b_scan(k, {data, extent().depth});
  }
}

void VolumeTexture::reset() {
  texture_.reset();
  maxima_.reset();
}

}  // namespace oct
