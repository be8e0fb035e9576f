#include "gl/texture_3d.h"

#include <array>
#include <stdexcept>
#include <string>

#include "core/exception.h"
#include "gl/opengl_error.h"
#include "gl/pixel_store.h"
#include "gl/trace/debugging.h"
#include "vec/vec.h"

namespace oct::gl {
namespace {

constexpr std::array<GLenum, 2> filters{GL_TEXTURE_MIN_FILTER, GL_TEXTURE_MAG_FILTER};
constexpr std::array<GLenum, 3> wraps{GL_TEXTURE_WRAP_S, GL_TEXTURE_WRAP_T, GL_TEXTURE_WRAP_R};

std::string text_of(const VolumeExtent& extent) {
  return std::to_string(extent.depth) + " x " + std::to_string(extent.a_scans) + " x " +
         std::to_string(extent.b_scans);
}

std::uint64_t megabytes(const VolumeExtent& extent, GLenum internal_format) {
  const std::uint64_t bytes_per_voxel = internal_format == GL_R16F ? 2 : 4;
  const auto voxels = static_cast<std::uint64_t>(extent.depth) * static_cast<std::uint64_t>(extent.a_scans) *
                      static_cast<std::uint64_t>(extent.b_scans);
  return (voxels * bytes_per_voxel + 999'999) / 1'000'000;
}

bool proxy_accepts(const VolumeExtent& extent, GLenum internal_format) {
  glTexImage3D(GL_PROXY_TEXTURE_3D, 0, static_cast<GLint>(internal_format),
               static_cast<GLsizei>(extent.depth), static_cast<GLsizei>(extent.a_scans),
               static_cast<GLsizei>(extent.b_scans), 0, GL_RED, GL_FLOAT, nullptr);
  GLint depth = 0;
  glGetTexLevelParameteriv(GL_PROXY_TEXTURE_3D, 0, GL_TEXTURE_WIDTH, &depth);
  return depth == extent.depth;
}

std::string memory_text(const VolumeExtent& extent, GLenum internal_format) {
  return "A volume of " + text_of(extent) + " voxels needs a texture of " +
         std::to_string(megabytes(extent, internal_format)) + " MB, ";
}

}  // namespace

void Texture3D::require(const VolumeExtent& extent, GLenum internal_format) {
  if (extent.depth < 0 || extent.a_scans < 0 || extent.b_scans < 0) {
    throw std::invalid_argument("Volume sizes must not be negative. ");
  }
  const GLint limit = integer(GL_MAX_3D_TEXTURE_SIZE);
  if (extent.depth > limit || extent.a_scans > limit || extent.b_scans > limit) {
    throw std::invalid_argument("A volume of " + text_of(extent) +
                                " voxels is too large: this OpenGL driver allows " + std::to_string(limit) +
                                " voxels along each axis. ");
  }
  if (!extent.empty() && !proxy_accepts(extent, internal_format)) {
    discard_gl_errors();  // some drivers raise an error for an impossible proxy; this exception says it all
    throw std::invalid_argument(memory_text(extent, internal_format) +
                                "more than this OpenGL driver allows. ");
  }
}

void Texture3D::allocate(const VolumeExtent& extent, GLenum internal_format, const char* checkpoint,
                         const float* data) {
  require(extent, internal_format);
  auto revisions = std::make_shared<SliceRevisions>();
  revisions->restart(extent.b_scans);
  std::vector<std::uint16_t> halves;
  if (internal_format == GL_R16F) halves.resize(static_cast<std::size_t>(extent.depth * extent.a_scans));
  Texture texture = Texture::create();
  if (!texture) {
    throw MemoryError(memory_text(extent, internal_format) + "which the driver could not provide. ");
  }
  glActiveTexture(GL_TEXTURE0);
  glBindTexture(GL_TEXTURE_3D, texture.get());
  for (const GLenum filter : filters) glTexParameteri(GL_TEXTURE_3D, filter, GL_LINEAR);
  for (const GLenum wrap : wraps) glTexParameteri(GL_TEXTURE_3D, wrap, GL_CLAMP_TO_EDGE);
  glTexParameteri(GL_TEXTURE_3D, GL_TEXTURE_MAX_LEVEL, 0);
  reset_pixel_unpack();
  glTexImage3D(GL_TEXTURE_3D, 0, static_cast<GLint>(internal_format), static_cast<GLsizei>(extent.depth),
               static_cast<GLsizei>(extent.a_scans), static_cast<GLsizei>(extent.b_scans), 0, GL_RED,
               GL_FLOAT, data);
  if (!data && !extent.empty()) {
    // Written to, so that the driver commits the memory now and not during the first frame.
    const float voxel = 0.0F;
    glTexSubImage3D(GL_TEXTURE_3D, 0, static_cast<GLint>(extent.depth - 1),
                    static_cast<GLint>(extent.a_scans - 1), static_cast<GLint>(extent.b_scans - 1), 1, 1, 1,
                    GL_RED, GL_FLOAT, &voxel);
  }
  try {
    throwOnGLError(checkpoint);
  } catch (const Exception& error) {
    discard_gl_errors();
    glBindTexture(GL_TEXTURE_3D, 0);
    throw Exception(error.kind(), std::string(error.what()) + " " + memory_text(extent, internal_format) +
                                      "which the driver could not provide. ");
  }
  texture_ = std::move(texture);
  extent_ = extent;
  revisions_ = std::move(revisions);
  halves_ = std::move(halves);
}

Texture3D::Binding::Binding(GLuint texture) {
  glActiveTexture(GL_TEXTURE0);
  glBindTexture(GL_TEXTURE_3D, texture);
}

void Texture3D::upload_b_scans(std::int64_t first, std::int64_t count, const float* data,
                               const char* checkpoint) {
  reset_pixel_unpack();
  if (!halves_.empty()) glPixelStorei(GL_UNPACK_ALIGNMENT, sizeof(std::uint16_t));
  const std::int64_t voxels = extent_.depth * extent_.a_scans;
  for (std::int64_t k = 0; k < count; ++k) {
    const void* b_scan = data + k * voxels;
    if (!halves_.empty()) {  // drivers take several times as long to round
      vec::to_half(halves_.data(), data + k * voxels, halves_.size());
      b_scan = halves_.data();
    }
    glTexSubImage3D(GL_TEXTURE_3D, 0, 0, 0, static_cast<GLint>(first + k),
                    static_cast<GLsizei>(extent_.depth), static_cast<GLsizei>(extent_.a_scans), 1, GL_RED,
                    halves_.empty() ? GL_FLOAT : GL_HALF_FLOAT, b_scan);
    throwOnGLError(checkpoint);
    revisions_->changed(first + k, first + k + 1);
  }
}

void Texture3D::label(std::string_view text) const {
  gl::label(texture_, text);
}

void Texture3D::reset() {
  texture_.reset();
  extent_ = {};
  revisions_.reset();
  halves_ = {};
}

}  // namespace oct::gl
