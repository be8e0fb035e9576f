// The data provider of the display renderer. Depth, the first dimension, is fastest in memory and is the
// texture's first axis; it is called the height because it runs down the screen.
#pragma once

#include <cstdint>
#include <mutex>
#include <vector>

#include "display/abstract_data_provider.h"
#include "gl/gl_names.h"

namespace oct {

class SimpleDataProvider : public AbstractDataProvider {
 public:
  // Copies an image of height by width samples. New dimensions reset the upper bound. Any thread.
  void setData(int height, int width, const float* samples);

  // Stores the displayed index range along the first dimension. Any thread.
  void setBounds(std::int64_t lower, std::int64_t upper);

  // The rest runs on the thread that owns the context.
  void release() override;
  void resize(int height, int width) override;
  std::unique_ptr<AbstractLockedTexture> lock() override;

 private:
  class LockedTexture;

  bool textureFits() const;
  void upload() const;

  std::vector<float> data_;
  gl::Texture texture_;
  int height_ = 0;
  int width_ = 0;
  std::mutex mutex_;  // guards data_, the dimensions and the bounds
  std::int64_t lowerBound_ = 0;
  std::int64_t upperBound_ = 0;
};

}  // namespace oct
