// The data provider of the display renderer: a single-channel float image in main memory
// and the texture that mirrors it.
#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
#include <vector>

#include "core/extent.h"
#include "gl/gl_names.h"

namespace oct {

struct TextureView {
  GLuint texture = 0;
  ImageExtent extent;
};

// A setter fills an image of its own and puts it in the place of the current one; a frame keeps the image
// that it took, however long it draws. Neither waits for the other: the lock is held while pointers change
// hands.
class SimpleDataProvider {
 public:
  struct Image {
    ImageExtent extent;
    std::vector<float> samples;
  };

  // Copies an image. Any thread. Of two calls at a time the one that began later stays.
  void set_data(const ImageExtent& extent, const float* samples);

  // The current image; nobody changes it any more.
  std::shared_ptr<const Image> image() const;

  // The rest runs on the thread that owns the context.
  void release();                          // deletes the texture
  TextureView upload(const Image& image);  // the texture with the image in it

 private:
  using OwnedImage = std::unique_ptr<Image>;

  void recycle(OwnedImage image);
  bool texture_fits(const ImageExtent& extent) const;
  void resize(const ImageExtent& extent);

  gl::Texture texture_;

  mutable std::mutex mutex_;  // guards what follows
  OwnedImage spare_;          // the last one that nobody wants any more; its memory serves the next
  std::uint64_t calls_ = 0;   // of set_data
  std::uint64_t call_ = 0;    // that the image came with
  std::shared_ptr<const Image> image_ = std::make_shared<const Image>();
};

}  // namespace oct
