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

// A texel holds one sample, or four that follow each other along depth, which is what filters want. Lanes after
// the last sample repeat it.
enum class TexelLayout { single, fours };

constexpr std::int64_t samples_per_texel(TexelLayout layout) {
  return layout == TexelLayout::fours ? 4 : 1;
}

// Texels for an image.
constexpr ImageExtent texels_of(const ImageExtent& extent, TexelLayout layout) {
  const std::int64_t samples = samples_per_texel(layout);
  return {(extent.depth + samples - 1) / samples, extent.a_scans};
}

struct TextureView {
  GLuint texture = 0;
  ImageExtent extent;  // samples
  TexelLayout layout = TexelLayout::single;
};

// A setter fills an image of its own and puts it in the place of the current one; a frame keeps the image
// that it took, however long it draws. Neither waits for the other: the lock is held while pointers change
// hands.
class SimpleDataProvider {
 public:
  struct Image {
    ImageExtent extent;
    std::uint64_t revision = 0;  // of every image another one; 0: none has been set
    std::vector<float> samples;  // A-scans, each filled up to whole fours by its last sample
  };

  // Copies an image. Any thread. Of two calls at a time the one that began later stays.
  void set_data(const ImageExtent& extent, const float* samples);

  // The current image; nobody changes it any more.
  std::shared_ptr<const Image> image() const;

  // The rest runs on the thread that owns the context.
  void release();  // deletes the texture
  // The texture with the image in it, uploaded unless it is there. When OpenGL refuses, the next call tries again.
  TextureView upload(const Image& image, TexelLayout layout);

 private:
  using OwnedImage = std::unique_ptr<Image>;

  void recycle(OwnedImage image);
  void resize(const ImageExtent& extent, TexelLayout layout);

  gl::Texture texture_;
  ImageExtent extent_;  // of the texture, in samples
  TexelLayout layout_ = TexelLayout::single;
  std::uint64_t uploaded_ = 0;  // revision

  mutable std::mutex mutex_;  // guards what follows
  OwnedImage spare_;          // the last one that nobody wants any more; its memory serves the next
  std::uint64_t calls_ = 0;   // of set_data
  std::shared_ptr<const Image> image_ = std::make_shared<const Image>();
};

}  // namespace oct
