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

std::size_t sampleCount(int height, int width) {
  if (height < 0 || width < 0) throw std::invalid_argument("Image sizes must not be negative. ");
  const auto count = static_cast<std::uint64_t>(height) * static_cast<std::uint64_t>(width);
  // The largest array that pointer differences can span.
  constexpr auto most =
      static_cast<std::uint64_t>(std::numeric_limits<std::ptrdiff_t>::max()) / sizeof(float);
  if (count > most) throw std::invalid_argument("The image is too large. ");
  return static_cast<std::size_t>(count);
}

// Asks the driver whether it could hold such a texture. Extents above the limit are as good as the next one
// above it; Mesa's software renderer writes past its stack when it sizes one of 2^30 texels.
bool proxyAccepts(GLint internalFormat, GLenum type, int height, int width, GLint limit) {
  height = std::min(height, limit + 1);
  width = std::min(width, limit + 1);
  glTexImage2D(GL_PROXY_TEXTURE_2D, 0, internalFormat, height, width, 0, GL_RED, type, nullptr);
  GLint firstAxis = 0;
  GLint secondAxis = 0;
  glGetTexLevelParameteriv(GL_PROXY_TEXTURE_2D, 0, GL_TEXTURE_WIDTH, &firstAxis);
  glGetTexLevelParameteriv(GL_PROXY_TEXTURE_2D, 0, GL_TEXTURE_HEIGHT, &secondAxis);
  return firstAxis >= 1 && secondAxis >= 1;
}

}  // namespace

class SimpleDataProvider::LockedTexture : public AbstractLockedTexture {
 public:
  LockedTexture(std::unique_lock<std::mutex> lock, GLuint texture, int height, int width)
      : lock_(std::move(lock)),
        texture_(texture),
        height_(static_cast<std::uint32_t>(height)),
        width_(static_cast<std::uint32_t>(width)) {}

  GLuint texture() const override { return texture_; }
  std::uint32_t height() const override { return height_; }
  std::uint32_t width() const override { return width_; }

 private:
  std::unique_lock<std::mutex> lock_;
  GLuint texture_;
  std::uint32_t height_;
  std::uint32_t width_;
};

void SimpleDataProvider::setData(int height, int width, const float* samples) {
  const std::size_t count = sampleCount(height, width);
  if (!samples && count > 0) throw std::invalid_argument("Image data must not be null. ");
  const std::lock_guard lock(mutex_);
  if (height != height_ || width != width_) {
    data_.resize(count);
    height_ = height;
    width_ = width;
    upperBound_ = height;
  }
  if (count > 0) std::memcpy(data_.data(), samples, count * sizeof(float));
}

void SimpleDataProvider::setBounds(std::int64_t lower, std::int64_t upper) {
  const std::lock_guard lock(mutex_);
  lowerBound_ = lower;
  upperBound_ = upper;
}

void SimpleDataProvider::release() {
  if (!texture_) return;
  glActiveTexture(GL_TEXTURE0);
  glBindTexture(GL_TEXTURE_2D, 0);
  texture_.reset();
}

void SimpleDataProvider::resize(int height, int width) {
  GLint limit = 0;
  glGetIntegerv(GL_MAX_TEXTURE_SIZE, &limit);
  if (height > limit || width > limit) writeError("Warning max texture size is likely exceeded. ");

  glActiveTexture(GL_TEXTURE0);
  glBindTexture(GL_TEXTURE_2D, 0);
  texture_.reset();
  gl::resetPixelUnpack();
  GLint internalFormat = GL_R32F;
  if (!proxyAccepts(GL_R32F, GL_FLOAT, height, width, limit)) {
    if (!proxyAccepts(GL_R16F, GL_HALF_FLOAT, height, width, limit)) {
      glGetError();  // some drivers raise an error for an impossible proxy; this exception says it all
      throw std::invalid_argument("Cannot generate a texture of the required size. ");
    }
    internalFormat = GL_R16F;
  }
  texture_ = gl::Texture::create();
  glBindTexture(GL_TEXTURE_2D, texture_.get());
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
  if (texture_) {
    glTexImage2D(GL_TEXTURE_2D, 0, internalFormat, height, width, 0, GL_RED, GL_FLOAT, nullptr);
  }
  glBindTexture(GL_TEXTURE_2D, 0);
  gl::throwOnGLError("SimpleDataProvider::resize");
}

std::unique_ptr<AbstractDataProvider::AbstractLockedTexture> SimpleDataProvider::lock() {
  std::unique_lock lock(mutex_);
  if (!textureFits()) resize(height_, width_);
  auto locked = std::make_unique<LockedTexture>(std::move(lock), texture_.get(), height_, width_);
  if (texture_) upload();
  gl::throwOnGLError("SimpleDataProvider::LockedTexture::glTexSubImage2D");
  return locked;
}

bool SimpleDataProvider::textureFits() const {
  if (!texture_) return false;
  GLint firstAxis = 0;
  GLint secondAxis = 0;
  glActiveTexture(GL_TEXTURE0);
  glBindTexture(GL_TEXTURE_2D, texture_.get());
  glGetTexLevelParameteriv(GL_TEXTURE_2D, 0, GL_TEXTURE_WIDTH, &firstAxis);
  glGetTexLevelParameteriv(GL_TEXTURE_2D, 0, GL_TEXTURE_HEIGHT, &secondAxis);
  return firstAxis == height_ && secondAxis == width_;
}

void SimpleDataProvider::upload() const {
  glActiveTexture(GL_TEXTURE0);
  glBindTexture(GL_TEXTURE_2D, texture_.get());
  gl::resetPixelUnpack();
  glTexSubImage2D(GL_TEXTURE_2D, 0, 0, 0, height_, width_, GL_RED, GL_FLOAT, data_.data());
  glBindTexture(GL_TEXTURE_2D, 0);
}

}  // namespace oct
