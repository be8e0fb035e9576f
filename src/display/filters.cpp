#include "display/filters.h"

#include <string>

#include "core/exception.h"
#include "gl/draw_state.h"
#include "gl/opengl_error.h"
#include "gl/pixel_store.h"
#include "gl/trace/debugging.h"
#include "gl/trace/pass_mark.h"
#include "shaders.h"

namespace oct {

void FilterChain::Pass::init(const char* name, const char* fragment_source) {
  program.load_to_program(std::string("filter_program_") + name, shaders::filter_vert, fragment_source);
  input_texture = program.uniform("inputTexture");
  input_texture_size = program.uniform("inputTextureSize");
  gl::throwOnGLError("AbstractOpenGLFilter::init");
}

void FilterChain::Output::create(const ImageExtent& texels) {
  if (!texture) texture = gl::Texture::create();
  if (!framebuffer) framebuffer = gl::Framebuffer::create();
  if (!texture || !framebuffer) throw OpenGLError("Invalid texture for rendering....");
  glBindTexture(GL_TEXTURE_2D, texture.get());
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
  glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA32F, static_cast<GLsizei>(texels.depth),
               static_cast<GLsizei>(texels.a_scans), 0, GL_RGBA, GL_FLOAT, nullptr);
  glBindFramebuffer(GL_DRAW_FRAMEBUFFER, framebuffer.get());
  gl::label(texture, "filtered image");
  gl::label(framebuffer, "filtered image");
  glFramebufferTexture2D(GL_DRAW_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, texture.get(), 0);
}

void FilterChain::init() {
  gaussian_x_.init("gaussian_x", shaders::gaussian_x_frag);
  gaussian_y_.init("gaussian_y", shaders::gaussian_y_frag);
  pepper_.init("pepper", shaders::pepper_frag);
}

void FilterChain::release() {
  for (Pass* const pass : {&gaussian_x_, &gaussian_y_, &pepper_}) pass->program.release();
  release_textures();
}

void FilterChain::release_textures() {
  source_.reset();
  extent_ = {};
  for (Output& output : outputs_) output = {};
}

void FilterChain::resize(const ImageExtent& extent) {
  if (outputs_[0].texture && outputs_[1].texture && extent == extent_) return;
  // Forgotten first: if OpenGL refuses, the next frame tries again.
  extent_ = {};
  gl::reset_pixel_unpack();
  for (Output& output : outputs_) output.create(texels_of(extent, TexelLayout::fours));
  gl::throwOnGLError("AbstractOpenGLFilter::resize");
  extent_ = extent;
}

TextureView FilterChain::run(const TextureView& input, std::uint64_t revision, const FilterSwitches& switches,
                             const gl::Quad& quad) {
  const Source source{revision, switches};
  const auto view = [&] {
    return TextureView{outputs_[last_].texture.get(), input.extent, TexelLayout::fours};
  };
  if (source_ == source && outputs_[last_].texture) return view();
  source_.reset();

  const gl::PassMark mark("filter image");
  const gl::DrawTargetGuard target;
  const gl::ScopedDisable whole{GL_SCISSOR_TEST};  // the client's counts in the client's target
  glActiveTexture(GL_TEXTURE0);
  resize(input.extent);
  const ImageExtent texels = texels_of(input.extent, TexelLayout::fours);
  glViewport(0, 0, static_cast<GLsizei>(texels.depth), static_cast<GLsizei>(texels.a_scans));
  TextureView current = input;
  const auto draw = [&](Pass& pass) {
    last_ = 1 - last_;
    glBindFramebuffer(GL_DRAW_FRAMEBUFFER, outputs_[last_].framebuffer.get());
    glBindTexture(GL_TEXTURE_2D, current.texture);
    pass.program.use();
    glUniform1i(pass.input_texture, 0);
    glUniform2f(pass.input_texture_size, static_cast<GLfloat>(input.extent.depth),
                static_cast<GLfloat>(input.extent.a_scans));
    quad.draw();
    gl::throwOnGLError("AbstractOpenGLFilter::draw");
    current = view();
  };
  const auto blur = [&] {
    draw(gaussian_x_);
    draw(gaussian_y_);
  };
  if (switches.first_blur) blur();
  if (switches.pepper) draw(pepper_);
  if (switches.second_blur) blur();
  glBindTexture(GL_TEXTURE_2D, 0);
  source_ = source;
  return current;
}

}  // namespace oct
