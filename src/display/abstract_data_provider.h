// A single-channel float image in main memory and the texture that mirrors it.
#pragma once

#include <cstdint>
#include <memory>

#include "gl/gl.h"

namespace oct {

class AbstractDataProvider {
 public:
  // The texture with the current image in it. Writers of the image wait while this object lives.
  class AbstractLockedTexture {
   public:
    virtual ~AbstractLockedTexture() = default;
    virtual GLuint texture() const = 0;
    virtual std::uint32_t height() const = 0;
    virtual std::uint32_t width() const = 0;
  };

  virtual ~AbstractDataProvider() = default;
  virtual void release() = 0;  // deletes the texture
  virtual void resize(int height, int width) = 0;
  virtual std::unique_ptr<AbstractLockedTexture> lock() = 0;
};

}  // namespace oct
