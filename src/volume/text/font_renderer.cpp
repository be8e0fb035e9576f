#include "volume/text/font_renderer.h"

#include <algorithm>
#include <array>
#include <utility>

#include <glm/gtc/type_ptr.hpp>

#include "core/exception.h"
#include "core/log.h"
#include "core/timing_mark.h"
#include "gl/opengl_error.h"
#include "gl/pixel_store.h"
#include "gl/trace/debugging.h"
#include "shaders.h"

namespace oct {
namespace {

constexpr std::array<glm::vec2, 6> corners{{{0, 0}, {1, 0}, {0, 1}, {0, 1}, {1, 0}, {1, 1}}};  // triangles

}  // namespace

FontRenderer::FontRenderer(int height) : height_(height), upright_(height, false), emphasised_(height, true) {
  {
    const TimingMark mark("text_shader");
    program_.load_to_program("text_program", shaders::text_vert, shaders::text_frag);
  }
  uniforms_ = {program_.uniform("projection"), program_.uniform("modelview"), program_.uniform("viewport"),
               program_.uniform("text_color")};
  gl::throwOnGLError("FontRenderer::init");
}

FontRenderer::~FontRenderer() {
  log() << "Unloading font renderer.";
}

const TextPicture& FontRenderer::picture(const StyledText& text) {
  return (text.emphasis ? emphasised_ : upright_).picture(text.text);
}

glm::ivec2 FontRenderer::size(const StyledText& text) {
  const TextPicture& picture = this->picture(text);
  return {picture.width, picture.height};
}

void FontRenderer::show(const std::vector<Label>& labels) {
  if (labels == shown_) return;
  shown_.clear();
  vertex_count_ = 0;
  const auto missing = [this](const Label& label) { return !atlas_ || !atlas_->find(label.text); };
  if (std::ranges::any_of(labels, missing)) upload_atlas(labels);
  if (!labels.empty()) upload_quads(labels);
  shown_ = labels;
}

void FontRenderer::upload_atlas(const std::vector<Label>& labels) {
  atlas_.reset();
  int widest = 0;
  for (const Label& label : labels) widest = std::max(widest, size(label.text).x);
  LabelAtlas atlas(widest);
  for (const Label& label : labels) {
    if (!atlas.find(label.text)) atlas.add(label.text, picture(label.text));
  }
  if (!texture_) texture_ = gl::Texture::create();
  if (!texture_) throw OpenGLError("Invalid texture for rendering....");
  glActiveTexture(GL_TEXTURE0);
  glBindTexture(GL_TEXTURE_2D, texture_.get());
  gl::label(texture_, "labels");
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
  gl::reset_pixel_unpack();
  glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, atlas.width(), atlas.height(), 0, GL_RGBA, GL_UNSIGNED_BYTE,
               atlas.pixels().data());
  gl::throwOnGLError("FontRenderer::rasterise");
  atlas_ = std::move(atlas);
}

void FontRenderer::upload_quads(const std::vector<Label>& labels) {
  std::vector<gl::PlacedVertex> vertices;
  for (const Label& label : labels) {
    const glm::vec2 size(this->size(label.text));
    const glm::vec2 origin(*atlas_->find(label.text));
    for (const glm::vec2& corner : corners)
      vertices.push_back({label.anchor, {corner * size + label.offset, corner * size + origin}});
  }
  quads_.set_vertices(std::span<const gl::PlacedVertex>(vertices));
  gl::throwOnGLError("FontRenderer::show");
  vertex_count_ = static_cast<GLsizei>(vertices.size());
}

void FontRenderer::draw(const glm::vec3& color, const LabelView& view) const {
  if (vertex_count_ == 0) return;
  program_.use();
  glUniformMatrix4fv(uniforms_.projection, 1, GL_FALSE, glm::value_ptr(view.projection));
  glUniformMatrix4fv(uniforms_.modelview, 1, GL_FALSE, glm::value_ptr(view.modelview));
  glUniform2f(uniforms_.viewport, view.viewport.x, view.viewport.y);
  glUniform3f(uniforms_.text_color, color.r, color.g, color.b);
  glActiveTexture(GL_TEXTURE0);  // what a sampler samples that nobody has set
  glBindTexture(GL_TEXTURE_2D, texture_.get());
  quads_.draw(GL_TRIANGLES, 0, vertex_count_);
}

}  // namespace oct
