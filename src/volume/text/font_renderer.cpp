#include "volume/text/font_renderer.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <stdexcept>

#include <glm/gtc/type_ptr.hpp>

#include "core/log.h"
#include "core/timing_mark.h"
#include "gl/draw_state.h"
#include "gl/opengl_error.h"
#include "gl/pixel_store.h"
#include "shaders.h"

namespace oct {
namespace {

// Several times what one frame shows, so that a range that is animated to and fro finds its texts again.
constexpr std::size_t most_texts = 128;

struct LabelVertex {
  glm::vec3 anchor;
  glm::vec2 corner;
};

constexpr std::array<glm::vec2, 4> corners{{{0, 0}, {1, 0}, {0, 1}, {1, 1}}};  // a triangle strip

const void* buffer_offset(std::size_t bytes) {
  return reinterpret_cast<const void*>(bytes);
}

}  // namespace

FontRenderer::FontRenderer(int height, bool emphasis) : rasteriser_(height, emphasis) {
  {
    const TimingMark mark("text_shader");
    program_.load_to_program("text_program", shaders::text_vert, shaders::text_frag);
  }
  uniforms_ = {program_.uniform("projection"), program_.uniform("modelview"),
               program_.uniform("viewport"),   program_.uniform("textureSize"),
               program_.uniform("offset"),     program_.uniform("text_texture"),
               program_.uniform("text_color")};
  create_quad();
  gl::throwOnGLError("FontRenderer::init");
}

FontRenderer::~FontRenderer() {
  log() << "Unloading font renderer.";
}

void FontRenderer::create_quad() {
  quad_ = gl::Buffer::create();
  if (!quad_) throw std::runtime_error("Could not create OpenGL buffer. ");
  vertex_array_ = gl::VertexArray::create();
  if (!vertex_array_) throw std::runtime_error("Could not create OpenGL buffer. ");
  glBindVertexArray(vertex_array_.get());
  glBindBuffer(GL_ARRAY_BUFFER, quad_.get());
  glVertexAttribPointer(0, 3, GL_FLOAT, GL_FALSE, sizeof(LabelVertex),
                        buffer_offset(offsetof(LabelVertex, anchor)));
  glVertexAttribPointer(1, 2, GL_FLOAT, GL_FALSE, sizeof(LabelVertex),
                        buffer_offset(offsetof(LabelVertex, corner)));
  glEnableVertexAttribArray(0);
  glEnableVertexAttribArray(1);
  glBindVertexArray(0);
  glBindBuffer(GL_ARRAY_BUFFER, 0);
}

const FontRenderer::CachedText& FontRenderer::label(const std::string& text) {
  ++uses_;
  if (const auto known = texts_.find(text); known != texts_.end()) {
    known->second.last_use = uses_;
    return known->second;
  }
  if (texts_.size() >= most_texts) forget_oldest();

  const TextPicture picture = rasteriser_.rasterise(text);
  CachedText cached;
  cached.size = {picture.width, picture.height};
  cached.last_use = uses_;
  if (!picture.pixels.empty()) {
    cached.texture = gl::Texture::create();
    if (!cached.texture) throw std::runtime_error("Invalid texture for rendering....");
    glActiveTexture(GL_TEXTURE0);
    glBindTexture(GL_TEXTURE_2D, cached.texture.get());
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_REPEAT);
    gl::reset_pixel_unpack();
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, picture.width, picture.height, 0, GL_RGBA, GL_UNSIGNED_BYTE,
                 picture.pixels.data());
    glBindTexture(GL_TEXTURE_2D, 0);
    gl::throwOnGLError("FontRenderer::rasterise");
  }
  return texts_.emplace(text, std::move(cached)).first->second;
}

void FontRenderer::forget_oldest() {
  const auto older = [](const auto& a, const auto& b) { return a.second.last_use < b.second.last_use; };
  texts_.erase(std::min_element(texts_.begin(), texts_.end(), older));
}

void FontRenderer::draw(const Label& label, const glm::vec3& color, const LabelView& view) {
  const CachedText& cached = this->label(label.text);
  if (!cached.texture) return;
  program_.use();
  glActiveTexture(GL_TEXTURE0);
  glBindTexture(GL_TEXTURE_2D, cached.texture.get());
  glUniformMatrix4fv(uniforms_.projection, 1, GL_FALSE, glm::value_ptr(view.projection));
  glUniformMatrix4fv(uniforms_.modelview, 1, GL_FALSE, glm::value_ptr(view.modelview));
  glUniform2f(uniforms_.viewport, view.viewport.x, view.viewport.y);
  glUniform2f(uniforms_.textureSize, static_cast<float>(cached.size.x), static_cast<float>(cached.size.y));
  glUniform2f(uniforms_.offset, label.offset.x, label.offset.y);
  glUniform1i(uniforms_.text_texture, 0);
  glUniform3f(uniforms_.text_color, color.r, color.g, color.b);

  const gl::Blending blending;
  std::array<LabelVertex, corners.size()> vertices;
  for (std::size_t i = 0; i < corners.size(); ++i) vertices[i] = {label.anchor, corners[i]};
  glBindBuffer(GL_ARRAY_BUFFER, quad_.get());
  glBufferData(GL_ARRAY_BUFFER, sizeof vertices, vertices.data(), GL_STREAM_DRAW);
  glBindBuffer(GL_ARRAY_BUFFER, 0);
  glBindVertexArray(vertex_array_.get());
  glDrawArrays(GL_TRIANGLE_STRIP, 0, static_cast<GLsizei>(vertices.size()));
  glBindVertexArray(0);
  glBindTexture(GL_TEXTURE_2D, 0);
  gl::throwOnGLError("FontRenderer::draw");
}

}  // namespace oct
