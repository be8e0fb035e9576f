#include "display/filters.h"

#include <vector>

#include "gl/draw_state.h"
#include "gl/opengl_error.h"
#include "gl/pixel_store.h"
#include "shaders.h"

namespace oct {

void AbstractOpenGLFilter::init() {
  program_.load_to_program("filter_program_" + name(), shaders::filter_vert, fragment_source());
  input_texture_uniform_ = program_.uniform("inputTexture");
  input_texture_size_uniform_ = program_.uniform("inputTextureSize");
  quad_.create("Could not create OpenGL buffer. ");
  gl::throwOnGLError("AbstractOpenGLFilter::init");
}

void AbstractOpenGLFilter::release() {
  program_.release();
  quad_.release();
  framebuffer_.reset();
  output_.reset();
  extent_ = {};
}

void AbstractOpenGLFilter::bind_input(const TextureView& input) {
  const auto depth = static_cast<GLsizei>(input.extent.depth);
  const auto a_scans = static_cast<GLsizei>(input.extent.a_scans);
  glActiveTexture(GL_TEXTURE0);
  if (!output_ || input.extent != extent_) {
    // Forgotten first: if OpenGL refuses the allocation below, the next pass tries again.
    extent_ = {};
    if (!output_) output_ = gl::Texture::create();
    glBindTexture(GL_TEXTURE_2D, output_.get());
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
    gl::reset_pixel_unpack();
    glTexImage2D(GL_TEXTURE_2D, 0, GL_R32F, depth, a_scans, 0, GL_RED, GL_FLOAT, nullptr);
    gl::throwOnGLError("AbstractOpenGLFilter::resize");
    extent_ = input.extent;
  }
  if (!framebuffer_) framebuffer_ = gl::Framebuffer::create();
  glBindFramebuffer(GL_DRAW_FRAMEBUFFER, framebuffer_.get());
  glFramebufferTexture2D(GL_DRAW_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, output_.get(), 0);
  glViewport(0, 0, depth, a_scans);
  glBindTexture(GL_TEXTURE_2D, input.texture);
}

void AbstractOpenGLFilter::set_uniforms(const TextureView& input) {
  program_.use();
  glUniform1i(input_texture_uniform_, 0);
  glUniform2f(input_texture_size_uniform_, static_cast<GLfloat>(input.extent.depth),
              static_cast<GLfloat>(input.extent.a_scans));
}

void AbstractOpenGLFilter::draw() {
  quad_.draw();
  gl::throwOnGLError("AbstractOpenGLFilter::draw");
}

std::string GaussianFilterX::name() const {
  return "gaussian_x";
}
const char* GaussianFilterX::fragment_source() const {
  return shaders::gaussian_x_frag;
}

std::string GaussianFilterY::name() const {
  return "gaussian_y";
}
const char* GaussianFilterY::fragment_source() const {
  return shaders::gaussian_y_frag;
}

std::string PepperFilter::name() const {
  return "pepper";
}
const char* PepperFilter::fragment_source() const {
  return shaders::pepper_frag;
}

FilterChain::FilterChain()
    : slots_{std::make_unique<GaussianFilterX>(), std::make_unique<GaussianFilterY>(),
             std::make_unique<PepperFilter>(), std::make_unique<GaussianFilterX>(),
             std::make_unique<GaussianFilterY>()} {}

void FilterChain::set_blur(bool first, bool second) {
  slots_[0]->enabled = first;
  slots_[1]->enabled = first;
  slots_[3]->enabled = second;
  slots_[4]->enabled = second;
}

void FilterChain::set_pepper(bool enabled) {
  slots_[2]->enabled = enabled;
}

void FilterChain::init() {
  for (const auto& filter : slots_) filter->init();
}

void FilterChain::release() {
  for (const auto& filter : slots_) filter->release();
}

TextureView FilterChain::run(const TextureView& input) {
  std::vector<AbstractOpenGLFilter*> enabled;
  for (const auto& filter : slots_) {
    if (filter->enabled) enabled.push_back(filter.get());
  }
  if (enabled.empty()) return input;

  const gl::DrawTargetGuard target;
  const gl::ScopedDisable whole{GL_SCISSOR_TEST};  // the client's counts in the client's target
  TextureView current = input;
  for (AbstractOpenGLFilter* const filter : enabled) {
    filter->bind_input(current);
    filter->set_uniforms(current);
    filter->draw();
    current = filter->output();
  }
  glBindTexture(GL_TEXTURE_2D, 0);
  return current;
}

}  // namespace oct
