// Text labels of the volume scene: quads that face the screen and keep their size in pixels.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include <glm/mat4x4.hpp>
#include <glm/vec2.hpp>
#include <glm/vec3.hpp>

#include "gl/geometry.h"
#include "gl/gl_names.h"
#include "gl/shader.h"
#include "volume/text/label_atlas.h"
#include "volume/text/text_cache.h"

namespace oct {

// How labels get onto the screen.
struct LabelView {
  glm::mat4 projection{1.0F};
  glm::mat4 modelview{1.0F};
  glm::vec2 viewport{0.0F};  // pixels
};

struct Label {
  StyledText text;
  glm::vec3 anchor{0.0F};  // model coordinates
  glm::vec2 offset{0.0F};  // pixels from the anchor's projection to the text's lower left corner
  bool operator==(const Label&) const = default;
};

// An upright font, and a bold and italic one, of the same height. All labels of a frame are one texture, one buffer
// and one draw; what is shown again is not uploaded again. Lives in the context that was current when it was made.
class FontRenderer {
 public:
  // Height of a line in pixels. Throws, also when there is no font.
  explicit FontRenderer(int height);
  ~FontRenderer();
  FontRenderer(const FontRenderer&) = delete;
  FontRenderer& operator=(const FontRenderer&) = delete;

  int height() const { return height_; }

  // Of a text on the screen, in pixels.
  glm::ivec2 size(const StyledText& text);

  // What draw draws from now on. After an error nothing is shown.
  void show(const std::vector<Label>& labels);

  // Over the current target; blending and the depth test are as the caller has set them. The caller asks for
  // OpenGL's errors.
  void draw(const glm::vec3& color, const LabelView& view) const;

 private:
  const TextPicture& picture(const StyledText& text);
  void upload_atlas(const std::vector<Label>& labels);
  void upload_quads(const std::vector<Label>& labels);

  int height_;
  TextCache upright_;
  TextCache emphasised_;
  gl::Shader program_;
  struct Uniforms {
    GLint projection, modelview, viewport, text_color;
  } uniforms_{};
  gl::Texture texture_;
  gl::Geometry quads_{"labels"};
  // What OpenGL has accepted.
  std::optional<LabelAtlas> atlas_;
  std::vector<Label> shown_;
  GLsizei vertex_count_ = 0;
};

}  // namespace oct
