// Full-screen passes over a float image that run before it is coloured.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>

#include "display/simple_data_provider.h"
#include "gl/quad.h"
#include "gl/shader.h"

namespace oct {

struct FilterSwitches {
  bool first_blur = false;
  bool pepper = false;
  bool second_blur = false;

  bool any() const { return first_blur || pepper || second_blur; }
  bool operator==(const FilterSwitches&) const = default;
};

// A Gaussian pair, pepper, and a second Gaussian pair. Passes read one of two textures and write the other, and what
// the last one wrote is kept until another image or other switches come.
class FilterChain {
 public:
  void init();
  void release();
  void release_textures();

  // Runs the enabled filters, of which there is one at least, over an image in fours. Leaves the draw framebuffer and
  // the viewport as they were.
  TextureView run(const TextureView& input, std::uint64_t revision, const FilterSwitches& switches,
                  const gl::Quad& quad);

 private:
  struct Pass {
    gl::Shader program;
    GLint input_texture = -1;
    GLint input_texture_size = -1;

    void init(const char* name, const char* fragment_source);
  };

  struct Output {
    gl::Texture texture;
    gl::Framebuffer framebuffer;

    void create(const ImageExtent& texels);
  };

  // What an output was made of.
  struct Source {
    std::uint64_t revision;
    FilterSwitches switches;

    bool operator==(const Source&) const = default;
  };

  void resize(const ImageExtent& extent);

  Pass gaussian_x_;
  Pass gaussian_y_;
  Pass pepper_;
  std::array<Output, 2> outputs_;
  ImageExtent extent_;            // of the outputs, in samples
  std::size_t last_ = 0;          // output of the last pass
  std::optional<Source> source_;  // of that
};

}  // namespace oct
