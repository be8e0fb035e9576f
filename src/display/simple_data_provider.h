// The data provider of the display renderer: a single-channel float image in main memory
// and the texture that mirrors it.
#pragma once

#include <memory>
#include <mutex>
#include <vector>

#include "core/extent.h"
#include "gl/gl_names.h"

namespace oct {

class SimpleDataProvider {
 public:
  // The texture with the current image in it. Writers of the image wait while this object lives.
  class LockedTexture {
   public:
    LockedTexture(std::unique_lock<std::mutex> lock, GLuint texture, const ImageExtent& extent)
        : lock_(std::move(lock)), texture_(texture), extent_(extent) {}

    GLuint texture() const { return texture_; }
    const ImageExtent& extent() const { return extent_; }

   private:
    const std::unique_lock<std::mutex> lock_;
    const GLuint texture_;
    const ImageExtent extent_;
  };

  // Copies an image. Any thread.
  void set_data(const ImageExtent& extent, const float* samples);

  // The rest runs on the thread that owns the context.
  void release();  // deletes the texture
  std::unique_ptr<LockedTexture> lock();

 private:
  void resize();
  bool texture_fits() const;
  void upload() const;

  std::vector<float> data_;
  gl::Texture texture_;
  ImageExtent extent_;
  std::mutex mutex_;  // guards data_ and its extent
};

}  // namespace oct
