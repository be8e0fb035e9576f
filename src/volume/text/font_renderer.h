// Text labels of the volume scene: quads that face the screen and keep their size in pixels.
#pragma once

#include <cstdint>
#include <map>
#include <string>

#include <glm/mat4x4.hpp>
#include <glm/vec2.hpp>
#include <glm/vec3.hpp>

#include "gl/gl_names.h"
#include "gl/shader.h"
#include "volume/text/text_rasteriser.h"

namespace oct {

// How labels get onto the screen.
struct LabelView {
  glm::mat4 projection{1.0F};
  glm::mat4 modelview{1.0F};
  glm::vec2 viewport{0.0F};  // pixels
};

struct Label {
  std::string text;
  glm::vec3 anchor{0.0F};  // model coordinates
  glm::vec2 offset{0.0F};  // pixels from the anchor's projection to the text's lower left corner
};

// One font; lives in the context that was current when it was made. Every distinct text is rasterised once while
// it is in use: of those that nobody asked for lately only so many are kept.
class FontRenderer {
 public:
  // Height of a line in pixels; emphasis: bold and italic. Throws
  // std::runtime_error, also when there is no font.
  FontRenderer(int height, bool emphasis);
  ~FontRenderer();
  FontRenderer(const FontRenderer&) = delete;
  FontRenderer& operator=(const FontRenderer&) = delete;

  // Size of a text on the screen in pixels.
  glm::ivec2 size(const std::string& text) { return label(text).size; }

  // Draws over the current target, blended; the depth test stays as the caller has set it. Blending and
  // texture unit 0 are left off and without a texture.
  void draw(const Label& label, const glm::vec3& color, const LabelView& view);

 private:
  struct CachedText {
    gl::Texture texture;
    glm::ivec2 size{0};
    std::uint64_t last_use = 0;
  };

  const CachedText& label(const std::string& text);
  void forget_oldest();
  void create_quad();

  TextRasteriser rasteriser_;
  std::map<std::string, CachedText> texts_;
  std::uint64_t uses_ = 0;
  gl::Shader program_;
  struct Uniforms {
    GLint projection, modelview, viewport, textureSize, offset, text_texture, text_color;
  } uniforms_{};
  gl::Buffer quad_;
  gl::VertexArray vertex_array_;
};

}  // namespace oct
