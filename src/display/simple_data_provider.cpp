#include "display/simple_data_provider.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <stdexcept>

#include "core/console.h"
#include "gl/opengl_error.h"
#include "gl/pixel_store.h"

namespace oct {
namespace {

std::size_t sample_count(const ImageExtent& extent) {
  if (extent.depth < 0 || extent.a_scans < 0) {
    throw std::invalid_argument("Image sizes must not be negative. ");
  }
  const auto count = static_cast<std::uint64_t>(extent.depth) * static_cast<std::uint64_t>(extent.a_scans);
  // The largest array that pointer differences can span.
  constexpr auto most =
      static_cast<std::uint64_t>(std::numeric_limits<std::ptrdiff_t>::max()) / sizeof(float);
  if (count > most) throw std::invalid_argument("The image is too large. ");
  return static_cast<std::size_t>(count);
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
  fresh->samples.assign(samples, samples + count);
  std::shared_ptr<const Image> image(
      std::shared_ptr<Image>(fresh.release(), [this](Image* old) { recycle(OwnedImage(old)); }));
  const std::lock_guard lock(mutex_);
  if (call < call_) return;
  call_ = call;
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
  if (!texture_) return;
  glActiveTexture(GL_TEXTURE0);
  glBindTexture(GL_TEXTURE_2D, 0);
  texture_.reset();
}

void SimpleDataProvider::resize(const ImageExtent& extent) {
  GLint limit = 0;
  glGetIntegerv(GL_MAX_TEXTURE_SIZE, &limit);
  if (extent.depth > limit || extent.a_scans > limit)
    write_error("Warning max texture size is likely exceeded. ");

  glActiveTexture(GL_TEXTURE0);
  glBindTexture(GL_TEXTURE_2D, 0);
  texture_.reset();
  gl::reset_pixel_unpack();
  GLint internal_format = GL_R32F;
  if (!proxy_accepts(GL_R32F, GL_FLOAT, extent, limit)) {
    if (!proxy_accepts(GL_R16F, GL_HALF_FLOAT, extent, limit)) {
      glGetError();  // some drivers raise an error for an impossible proxy; this exception says it all
      throw std::invalid_argument("Cannot generate a texture of the required size. ");
    }
    internal_format = GL_R16F;
  }
  texture_ = gl::Texture::create();
  if (!texture_) throw std::runtime_error("Invalid texture for rendering....");
  glBindTexture(GL_TEXTURE_2D, texture_.get());
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
  glTexImage2D(GL_TEXTURE_2D, 0, internal_format, static_cast<GLsizei>(extent.depth),
               static_cast<GLsizei>(extent.a_scans), 0, GL_RED, GL_FLOAT, nullptr);
  glBindTexture(GL_TEXTURE_2D, 0);
  gl::throwOnGLError("SimpleDataProvider::resize");
}

TextureView SimpleDataProvider::upload(const Image& image) {
  const ImageExtent& extent = image.extent;
  if (!texture_fits(extent)) resize(extent);
  glActiveTexture(GL_TEXTURE0);
  glBindTexture(GL_TEXTURE_2D, texture_.get());
  gl::reset_pixel_unpack();
  glTexSubImage2D(GL_TEXTURE_2D, 0, 0, 0, static_cast<GLsizei>(extent.depth),
                  static_cast<GLsizei>(extent.a_scans), GL_RED, GL_FLOAT, image.samples.data());
  glBindTexture(GL_TEXTURE_2D, 0);
  gl::throwOnGLError("SimpleDataProvider::LockedTexture::glTexSubImage2D");
  return {texture_.get(), extent};
}

bool SimpleDataProvider::texture_fits(const ImageExtent& extent) const {
  if (!texture_) return false;
  GLint first_axis = 0;
  GLint second_axis = 0;
  glActiveTexture(GL_TEXTURE0);
  glBindTexture(GL_TEXTURE_2D, texture_.get());
  glGetTexLevelParameteriv(GL_TEXTURE_2D, 0, GL_TEXTURE_WIDTH, &first_axis);
  glGetTexLevelParameteriv(GL_TEXTURE_2D, 0, GL_TEXTURE_HEIGHT, &second_axis);
  return extent == ImageExtent{first_axis, second_axis};
}

}  // namespace oct
