#include "volume/skipping/volume_texture.h"

namespace oct {
namespace {

// Of a cube. Smaller bricks find more that is empty, and their tables cost more.
constexpr int brick_side = 4;

}  // namespace

void VolumeTexture::allocate(const VolumeExtent& extent, GLenum internal_format, const char* checkpoint) {
  gl::Texture3D::require(extent, internal_format);
  auto maxima = std::make_unique<BrickMaxima>(
      extent, brick_side,
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
