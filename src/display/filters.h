// Full-screen passes over a single-channel float texture that run before the image is coloured.
#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <memory>
#include <string>

#include "display/simple_data_provider.h"
#include "gl/quad.h"
#include "gl/shader.h"

namespace oct {

class AbstractOpenGLFilter {
 public:
  virtual ~AbstractOpenGLFilter() = default;
  virtual std::string name() const = 0;
  virtual const char* fragment_source() const = 0;

  virtual void init();  // builds the program and the quad
  virtual void release();

  // The three steps of a pass, in this order.
  virtual void bind_input(const TextureView& input);
  virtual void set_uniforms(const TextureView& input);
  virtual void draw();

  TextureView output() const { return {output_.get(), extent_}; }

  std::atomic<bool> enabled{false};  // written by any thread, read once per frame

 private:
  gl::Shader program_;
  GLint input_texture_uniform_ = -1;
  GLint input_texture_size_uniform_ = -1;
  gl::Texture output_;
  gl::Framebuffer framebuffer_;
  gl::Quad quad_;
  ImageExtent extent_;  // of the output
};

class GaussianFilterX : public AbstractOpenGLFilter {
 public:
  std::string name() const override;
  const char* fragment_source() const override;
};

class GaussianFilterY : public AbstractOpenGLFilter {
 public:
  std::string name() const override;
  const char* fragment_source() const override;
};

class PepperFilter : public AbstractOpenGLFilter {
 public:
  std::string name() const override;
  const char* fragment_source() const override;
};

// The five slots: a Gaussian pair, pepper, and a second Gaussian pair.
class FilterChain {
 public:
  FilterChain();

  void set_blur(bool first, bool second);
  void set_pepper(bool enabled);

  void init();
  void release();

  // Runs the enabled filters in slot order and returns the last output, or the input when none is enabled.
  // Leaves the draw framebuffer and the viewport as they were.
  TextureView run(const TextureView& input);

 private:
  std::array<std::unique_ptr<AbstractOpenGLFilter>, 5> slots_;
};

}  // namespace oct
