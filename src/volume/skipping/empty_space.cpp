#include "volume/skipping/empty_space.h"

#include <algorithm>
#include <limits>

#include "core/exception.h"
#include "gl/opengl_error.h"
#include "gl/pixel_store.h"
#include "gl/trace/debugging.h"
#include "gl/trace/pass_mark.h"
#include "volume/skipping/empty_cubes.h"

namespace oct {
namespace {

void upload(const BrickGrid& grid, std::size_t octant, int limit, const std::uint8_t* sides) {
  const auto depth = static_cast<GLsizei>(grid.depth);
  const auto a_scans = static_cast<GLsizei>(grid.a_scans);
  const auto b_scans = static_cast<GLsizei>(grid.b_scans);
  glTexSubImage3D(GL_TEXTURE_3D, 0, (octant & 1U) != 0 ? depth : 0, (octant & 2U) != 0 ? a_scans : 0,
                  (2 * limit + ((octant & 4U) != 0 ? 1 : 0)) * b_scans, depth, a_scans, b_scans,
                  GL_RED_INTEGER, GL_UNSIGNED_BYTE, sides);
}

}  // namespace

void EmptySpace::update(BrickMaxima& volume, BrickMaxima* overlay, const Visibility& visibility) {
  const Basis basis{volume.revision(), overlay ? overlay->revision() : 0, volume.grid(), visibility};
  const bool same = texture_ && basis.volume == basis_.volume && basis.overlay == basis_.overlay &&
                    basis.grid == basis_.grid && basis.visibility.same_limits(basis_.visibility);
  if (same &&
      std::ranges::equal(visibility.octants, made_, [](bool needed, bool made) { return made || !needed; }))
    return;
  const gl::PassMark mark("render_raycasting::empty space");
  if (!same) begin_tables(basis, volume, overlay);
  glActiveTexture(GL_TEXTURE0);
  glBindTexture(GL_TEXTURE_3D, texture_.get());
  gl::reset_pixel_unpack();
  glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
  for (std::size_t octant = 0; octant < made_.size(); ++octant) {
    if (!visibility.octants[octant] || made_[octant]) continue;
    for (int limit = 0; limit < visibility.count; ++limit) make(limit, octant);
    gl::throwOnGLError("render_raycasting::empty space");
    made_[octant] = true;
  }
  glBindTexture(GL_TEXTURE_3D, 0);
}

// The eight octants lie side by side, two along each axis, and the limits behind each other.
void EmptySpace::begin_tables(const Basis& basis, BrickMaxima& volume, BrickMaxima* overlay) {
  made_.fill(false);
  basis_ = {};
  const int limits = basis.visibility.count;
  if (!texture_ || allocated_ != basis.grid || allocated_limits_ != limits) {
    allocated_ = {};
    if (!texture_) texture_ = gl::Texture::create();
    if (!texture_) throw OpenGLError("Invalid texture for rendering....");
    glActiveTexture(GL_TEXTURE0);
    glBindTexture(GL_TEXTURE_3D, texture_.get());
    gl::label(texture_, "empty space");
    for (const GLenum filter : {GL_TEXTURE_MIN_FILTER, GL_TEXTURE_MAG_FILTER})
      glTexParameteri(GL_TEXTURE_3D, filter, GL_NEAREST);
    glTexParameteri(GL_TEXTURE_3D, GL_TEXTURE_MAX_LEVEL, 0);
    gl::reset_pixel_unpack();
    glTexImage3D(GL_TEXTURE_3D, 0, GL_R8UI, static_cast<GLsizei>(2 * basis.grid.depth),
                 static_cast<GLsizei>(2 * basis.grid.a_scans),
                 static_cast<GLsizei>(2 * basis.grid.b_scans * limits), 0, GL_RED_INTEGER, GL_UNSIGNED_BYTE,
                 nullptr);
    gl::throwOnGLError("render_raycasting::empty space");
    allocated_ = basis.grid;
    allocated_limits_ = limits;
  }
  maxima_ = volume.values();
  if (overlay) {
    const std::vector<float>& over = overlay->values();
    for (std::size_t i = 0; i < maxima_.size(); ++i)
      maxima_[i] =
          maxima_[i] > basis.visibility.volume_limit ? std::numeric_limits<float>::infinity() : over[i];
  }
  sides_.resize(maxima_.size());
  basis_ = basis;
}

void EmptySpace::make(int limit, std::size_t octant) {
  find_empty_cubes(maxima_, basis_.grid, basis_.visibility.limits[static_cast<std::size_t>(limit)],
                   {(octant & 1U) != 0, (octant & 2U) != 0, (octant & 4U) != 0}, sides_);
  upload(basis_.grid, octant, limit, sides_.data());
}

void EmptySpace::release() {
  texture_.reset();
  made_.fill(false);
}

}  // namespace oct
