#include "display/display_renderer.h"

#include <algorithm>

#include "core/log.h"
#include "core/timing_mark.h"
#include "gl/context/opengl_loader.h"
#include "gl/draw_state.h"
#include "gl/opengl_error.h"
#include "shaders.h"

namespace oct {
namespace {

// Texture units of the two programs.
constexpr GLint display_unit = 0;
constexpr GLint color_unit = 1;
constexpr GLint overlay_unit = 2;

void bind_texture(GLint unit, GLenum target, GLuint texture) {
  glActiveTexture(GL_TEXTURE0 + static_cast<GLenum>(unit));
  glBindTexture(target, texture);
}

}  // namespace

struct DisplayRenderer::Frame {
  const FrameSettings& settings;
  TextureView image;  // the base image after its filters
  GLsizei width;      // of the viewport
  GLsizei height;
};

DisplayRenderer::~DisplayRenderer() {
  const TimingMark destruction("Display renderer destruction");
  const TimingMark mark("~DisplayRenderer");
}

void DisplayRenderer::init() {
  const TimingMark mark("Before DisplayRenderer::init");
  gl::require_opengl();
  gl::throwOnGLError("Before DisplayRenderer::init");
  release();
  try {
    build_programs();
    filters_.init();
    quad_.create("Could not create OpenGL buffer. ");
    gl::throwOnGLError("DisplayRenderer::init");
  } catch (...) {
    release();
    throw;
  }
  home_ = gl::current_identity();
  initialized_ = true;
}

void DisplayRenderer::build_programs() {
  gl::Shader& display = display_.shader;
  display.load_to_program("display_program", shaders::display_vert, shaders::display_frag);
  display_.lowerValue = display.uniform("lowerValue");
  display_.upperValue = display.uniform("upperValue");
  display_.displayTex = display.uniform("displayTex");
  display_.colorTex = display.uniform("colorTex");
  display_.textureSize = display.uniform("textureSize");
  display_.displaySize = display.uniform("displaySize");
  display_.dpp = display.uniform("DPP");
  display_.gamma = display.uniform("gamma");
  display_.flip = display.uniform("flip");

  gl::Shader& overlay = overlay_.shader;
  overlay.load_to_program("overlay_program", shaders::display_vert, shaders::overlay_frag);
  overlay_.lowerValue = overlay.uniform("lowerValue");
  overlay_.upperValue = overlay.uniform("upperValue");
  overlay_.displayTex = overlay.uniform("displayTex");
  overlay_.overlayTex = overlay.uniform("overlayTex");
  overlay_.colorTex = overlay.uniform("colorTex");
  overlay_.displaySize = overlay.uniform("displaySize");
  overlay_.threshold = overlay.uniform("threshold");
  overlay_.flip = overlay.uniform("flip");
}

void DisplayRenderer::release() {
  initialized_ = false;
  display_.shader.release();
  overlay_.shader.release();
  filters_.release();
  quad_.release();
  for (ColormapTexture& texture : colormap_textures_) texture.release();
  display_data_.release();
  overlay_data_.release();
}

void DisplayRenderer::uninit() {
  const TimingMark begin("DisplayRenderer::uninit begin");
  const TimingMark mark("Uninit display renderer");
  if (!initialized_) return;
  gl::require_opengl();
  release();
  gl::throwOnGLError("DisplayRenderer::uninit");
}

void DisplayRenderer::render() {
  if (!initialized_) {
    log() << "Renderer has not yet been initialized. Aborting rendering";
    return;
  }
  gl::require_opengl();
  gl::require_home(home_);
  gl::throwOnGLError("render: init");
  const FrameSettings settings = take_settings();
  upload_colormaps(settings);

  const TextureView image = filters_.run(display_data_.upload(*settings.image));
  quad_.create("Could not create OpenGL buffer.");

  const auto& background = settings.common.backgroundColor;
  glClearColor(background[0], background[1], background[2], background[3]);
  glClear(GL_COLOR_BUFFER_BIT);

  std::array<GLint, 4> viewport{};
  glGetIntegerv(GL_VIEWPORT, viewport.data());
  const Frame frame{settings, image, viewport[2], viewport[3]};
  if (frame.width > 0 && frame.height > 0) {
    draw_base(frame);
    draw_overlays(frame);
  }
  gl::throwOnGLError("DisplayRenderer::render");
}

DisplayRenderer::FrameSettings DisplayRenderer::take_settings() {
  FrameSettings result;
  {
    const std::lock_guard lock(settings_mutex_);
    result.common = settings_;
    result.layers = layers_;
  }
  result.image = display_data_.image();
  result.overlay_image = overlay_data_.image();
  return result;
}

void DisplayRenderer::upload_colormaps(const FrameSettings& settings) {
  for (std::size_t i = 0; i < layer_count; ++i) colormap_textures_[i].upload(settings.layers[i].colormap);
}

void DisplayRenderer::draw_base(const Frame& frame) {
  const auto samples = [](std::int64_t texels, GLsizei pixels) {
    return std::max(static_cast<float>(texels) / static_cast<float>(pixels), 1.0F);
  };
  const LayerSettings& layer = frame.settings.layers[0].settings;
  const ImageExtent& extent = frame.image.extent;

  display_.shader.use();
  bind_texture(display_unit, GL_TEXTURE_2D, frame.image.texture);
  bind_texture(color_unit, GL_TEXTURE_1D, colormap_textures_[0].get());
  glUniform1i(display_.displayTex, display_unit);
  glUniform1i(display_.colorTex, color_unit);
  glUniform1f(display_.lowerValue, layer.lowerValue);
  glUniform1f(display_.upperValue, layer.upperValue);
  glUniform2f(display_.textureSize, static_cast<float>(extent.depth), static_cast<float>(extent.a_scans));
  glUniform2f(display_.displaySize, static_cast<float>(frame.width), static_cast<float>(frame.height));
  glUniform2f(display_.dpp, samples(extent.depth, frame.height), samples(extent.a_scans, frame.width));
  glUniform1f(display_.gamma, 1.0F);
  glUniform1i(display_.flip, frame.settings.common.flip);
  quad_.draw();
}

void DisplayRenderer::draw_overlays(const Frame& frame) {
  const auto& layers = frame.settings.layers;
  const auto shown = [](const Layer& layer) { return layer.settings.enabled; };
  if (std::none_of(layers.begin() + 1, layers.end(), shown)) return;

  const TextureView overlay = overlay_data_.upload(*frame.settings.overlay_image);
  const gl::Blending blending;
  overlay_.shader.use();
  bind_texture(display_unit, GL_TEXTURE_2D, frame.image.texture);
  bind_texture(overlay_unit, GL_TEXTURE_2D, overlay.texture);
  for (std::size_t i = 1; i < layer_count; ++i) {
    if (shown(layers[i])) draw_overlay(frame, i);
  }
}

void DisplayRenderer::draw_overlay(const Frame& frame, std::size_t index) {
  const LayerSettings& layer = frame.settings.layers[index].settings;
  bind_texture(color_unit, GL_TEXTURE_1D, colormap_textures_[index].get());
  glUniform1i(overlay_.displayTex, display_unit);
  glUniform1i(overlay_.overlayTex, overlay_unit);
  glUniform1i(overlay_.colorTex, color_unit);
  glUniform1f(overlay_.lowerValue, layer.lowerValue);
  glUniform1f(overlay_.upperValue, layer.upperValue);
  glUniform1f(overlay_.threshold, frame.settings.common.threshold);
  glUniform2f(overlay_.displaySize, static_cast<float>(frame.width), static_cast<float>(frame.height));
  glUniform1i(overlay_.flip, frame.settings.common.flip);
  quad_.draw();
}

}  // namespace oct
