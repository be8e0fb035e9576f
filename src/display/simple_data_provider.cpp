#include "display/simple_data_provider.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <stdexcept>

#include "core/console.h"
#include "core/exception.h"
#include "gl/opengl_error.h"
#include "gl/pixel_store.h"
#include "gl/trace/debugging.h"
#include "gl/trace/pass_mark.h"

namespace oct {
namespace {

std::int64_t depth_in_memory(const ImageExtent& extent) {
  return 4 * texels_of(extent, TexelLayout::fours).depth;
}

// In memory.
std::size_t sample_count(const ImageExtent& extent) {
  if (extent.depth < 0 || extent.a_scans < 0) {
    throw std::invalid_argument("Image sizes must not be negative. ");
  }
  const auto count =
      static_cast<std::uint64_t>(depth_in_memory(extent)) * static_cast<std::uint64_t>(extent.a_scans);
  // The largest array that pointer differences can span.
  constexpr auto most =
      static_cast<std::uint64_t>(std::numeric_limits<std::ptrdiff_t>::max()) / sizeof(float);
  if (count > most) throw std::invalid_argument("The image is too large. ");
  return static_cast<std::size_t>(count);
}

void copy_a_scans(const ImageExtent& extent, const float* from, std::vector<float>& to) {
  const std::int64_t pitch = depth_in_memory(extent);
  if (pitch == extent.depth) {
    to.assign(from, from + pitch * extent.a_scans);
    return;
  }
  to.resize(static_cast<std::size_t>(pitch * extent.a_scans));
  float* row = to.data();
  for (std::int64_t i = 0; i < extent.a_scans; ++i, from += extent.depth, row += pitch) {
    std::copy_n(from, extent.depth, row);
    std::fill(row + extent.depth, row + pitch, from[extent.depth - 1]);
  }
}

// Asks the driver whether it could hold such a texture. Extents above the limit are as good as the next one
// above it; Mesa's software renderer writes past its stack when it sizes one of 2^30 texels.
bool proxy_accepts(GLint internal_format, GLenum type, const ImageExtent& extent, GLint limit) {
  const auto cut = [&](std::int64_t samples) {
    return static_cast<GLsizei>(std::min(samples, std::int64_t{limit} + 1));
  };
  glTexImage2D(GL_PROXY_TEXTURE_2D, 0, internal_format, cut(extent.depth), cut(extent.a_scans), 0, GL_RED,
               type, nullptr);
  GLint first_axis = 0;
  GLint second_axis = 0;
  glGetTexLevelParameteriv(GL_PROXY_TEXTURE_2D, 0, GL_TEXTURE_WIDTH, &first_axis);
  glGetTexLevelParameteriv(GL_PROXY_TEXTURE_2D, 0, GL_TEXTURE_HEIGHT, &second_axis);
  return first_axis >= 1 && second_axis >= 1;
}

}  // namespace

void SimpleDataProvider::set_data(const ImageExtent& extent, const float* samples) {
  const std::size_t count = sample_count(extent);
  if (!samples && count > 0) throw std::invalid_argument("Image data must not be null. ");
  std::uint64_t call = 0;
  OwnedImage fresh;
  {
    const std::lock_guard lock(mutex_);
    call = ++calls_;
    fresh = std::move(spare_);
  }
  // The memory of a larger image would never be given back.
  if (!fresh || fresh->samples.size() != count) fresh = std::make_unique<Image>();
  fresh->extent = extent;
  fresh->revision = call;
  copy_a_scans(extent, samples, fresh->samples);
  std::shared_ptr<const Image> image(
      std::shared_ptr<Image>(fresh.release(), [this](Image* old) { recycle(OwnedImage(old)); }));
  const std::lock_guard lock(mutex_);
  if (call < image_->revision) return;
  image_.swap(image);
}

void SimpleDataProvider::recycle(OwnedImage image) {
  const std::lock_guard lock(mutex_);
  spare_.swap(image);
}

std::shared_ptr<const SimpleDataProvider::Image> SimpleDataProvider::image() const {
  const std::lock_guard lock(mutex_);
  return image_;
}

void SimpleDataProvider::release() {
  uploaded_ = 0;
  extent_ = {};
  if (!texture_) return;
  glActiveTexture(GL_TEXTURE0);
  glBindTexture(GL_TEXTURE_2D, 0);
  texture_.reset();
}

void SimpleDataProvider::resize(const ImageExtent& extent, TexelLayout layout) {
  const GLint limit = gl::integer(GL_MAX_TEXTURE_SIZE);
  if (extent.depth > limit || extent.a_scans > limit)
    write_error("Warning max texture size is likely exceeded. ");

  release();
  gl::reset_pixel_unpack();
  // What fits as single samples fits in fours, so that no image goes with one layout only.
  bool whole = true;
  if (!proxy_accepts(GL_R32F, GL_FLOAT, extent, limit)) {
    if (!proxy_accepts(GL_R16F, GL_HALF_FLOAT, extent, limit)) {
      glGetError();  // some drivers raise an error for an impossible proxy; this exception says it all
      throw std::invalid_argument("Cannot generate a texture of the required size. ");
    }
    whole = false;
  }
  const bool single = layout == TexelLayout::single;
  const GLint internal_format = single ? (whole ? GL_R32F : GL_R16F) : (whole ? GL_RGBA32F : GL_RGBA16F);
  const ImageExtent texels = texels_of(extent, layout);
  texture_ = gl::Texture::create();
  if (!texture_) throw OpenGLError("Invalid texture for rendering....");
  glActiveTexture(GL_TEXTURE0);
  glBindTexture(GL_TEXTURE_2D, texture_.get());
  gl::label(texture_, "image");
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
  glTexImage2D(GL_TEXTURE_2D, 0, internal_format, static_cast<GLsizei>(texels.depth),
               static_cast<GLsizei>(texels.a_scans), 0, single ? GL_RED : GL_RGBA, GL_FLOAT, nullptr);
  glBindTexture(GL_TEXTURE_2D, 0);
  gl::throwOnGLError("SimpleDataProvider::resize");
  extent_ = extent;
  layout_ = layout;
}

TextureView SimpleDataProvider::upload(const Image& image, TexelLayout layout) {
  const ImageExtent& extent = image.extent;
  if (!texture_ || extent != extent_ || layout != layout_) resize(extent, layout);
  const TextureView view{texture_.get(), extent, layout};
  if (uploaded_ == image.revision) return view;
  const gl::PassMark mark("upload image");
  uploaded_ = 0;  // the texture is about to be spoilt
  const ImageExtent texels = texels_of(extent, layout);
  glActiveTexture(GL_TEXTURE0);
  glBindTexture(GL_TEXTURE_2D, texture_.get());
  gl::reset_pixel_unpack();
  glPixelStorei(GL_UNPACK_ROW_LENGTH,
                static_cast<GLint>(depth_in_memory(extent) / samples_per_texel(layout)));
  glTexSubImage2D(GL_TEXTURE_2D, 0, 0, 0, static_cast<GLsizei>(texels.depth),
                  static_cast<GLsizei>(texels.a_scans), layout == TexelLayout::fours ? GL_RGBA : GL_RED,
                  GL_FLOAT, image.samples.data());
  glPixelStorei(GL_UNPACK_ROW_LENGTH, 0);
  glBindTexture(GL_TEXTURE_2D, 0);
  gl::throwOnGLError("SimpleDataProvider::LockedTexture::glTexSubImage2D");
  uploaded_ = image.revision;
  return view;
}

}  // namespace oct
