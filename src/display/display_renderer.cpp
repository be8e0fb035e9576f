#include "display/display_renderer.h"

#include <algorithm>
#include <cmath>

#include "core/log.h"
#include "core/timing_mark.h"
#include "gl/context/opengl_loader.h"
#include "gl/draw_state.h"
#include "gl/opengl_error.h"
#include "gl/trace/pass_mark.h"
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

void set_extent(GLint uniform, const ImageExtent& extent) {
  glUniform2f(uniform, static_cast<float>(extent.depth), static_cast<float>(extent.a_scans));
}

}  // namespace

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
    built(display_, TexelLayout::single);
    built(overlay_, TexelLayout::single);
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

void DisplayRenderer::DisplayProgram::build(TexelLayout layout) {
  if (layout == TexelLayout::single) {
    shader.load_to_program("display_program", shaders::display_vert, shaders::display_frag);
  } else {
    shader.load_to_program("display_program_in_fours", shaders::display_vert, shaders::display_in_fours_frag);
  }
  lowerValue = shader.uniform("lowerValue");
  upperValue = shader.uniform("upperValue");
  displayTex = shader.uniform("displayTex");
  colorTex = shader.uniform("colorTex");
  textureSize = shader.uniform("textureSize");
  texel_count = shader.uniform("texelCount");
  displaySize = shader.uniform("displaySize");
  dpp = shader.uniform("DPP");
  gamma = shader.uniform("gamma");
  flip = shader.uniform("flip");
  part = shader.uniform("part");
}

void DisplayRenderer::OverlayProgram::build(TexelLayout layout) {
  if (layout == TexelLayout::single) {
    shader.load_to_program("overlay_program", shaders::display_vert, shaders::overlay_frag);
  } else {
    shader.load_to_program("overlay_program_in_fours", shaders::display_vert, shaders::overlay_in_fours_frag);
  }
  lowerValue = shader.uniform("lowerValue");
  upperValue = shader.uniform("upperValue");
  displayTex = shader.uniform("displayTex");
  overlayTex = shader.uniform("overlayTex");
  colorTex = shader.uniform("colorTex");
  textureSize = shader.uniform("textureSize");
  texel_count = shader.uniform("texelCount");
  displaySize = shader.uniform("displaySize");
  threshold = shader.uniform("threshold");
  flip = shader.uniform("flip");
  part = shader.uniform("part");
}

// The program for a layout, built when it is first asked for.
template <class Program>
const Program& DisplayRenderer::built(std::array<Program, layout_count>& programs, TexelLayout layout) {
  Program& program = programs[static_cast<std::size_t>(layout)];
  if (program.shader.program() != 0) return program;
  try {
    program.build(layout);
  } catch (...) {
    program.shader.release();  // it may have linked before a checkpoint found an older error
    throw;
  }
  return program;
}

void DisplayRenderer::release() {
  initialized_ = false;
  for (DisplayProgram& program : display_) program.shader.release();
  for (OverlayProgram& program : overlay_) program.shader.release();
  filters_.release();
  quad_.release();
  release_textures();
}

void DisplayRenderer::release_textures() {
  for (ColormapTexture& texture : colormap_textures_) texture.release();
  display_data_.release();
  overlay_data_.release();
  filters_.release_textures();
  picture_.release();
  shown_.reset();
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
    last_frame_.note_failure(
        "it was drawn before initDisplayRendering() or after uninitDisplayRendering(). ");
    return;
  }
  try {
    gl::require_opengl();
    gl::require_home(home_);
    const gl::PassMark mark("DisplayRenderer::render");
    draw_or_forget();
  } catch (const std::exception& error) {
    last_frame_.note_failure(error.what());
    throw;
  }
}

// After an error nobody knows what any texture holds.
void DisplayRenderer::draw_or_forget() {
  try {
    draw_frame();
  } catch (...) {
    release_textures();
    throw;
  }
}

void DisplayRenderer::draw_frame() {
  gl::throwOnGLError("render: init");
  quad_.create("Could not create OpenGL buffer.");
  std::array<GLint, 4> viewport{};
  glGetIntegerv(GL_VIEWPORT, viewport.data());
  const auto taken = std::make_shared<const Frame>(take_frame(viewport[2], viewport[3]));
  const Frame& frame = *taken;
  last_frame_.remember(taken);
  const Content& content = frame.content;
  if (shown_ == content && gl::KeptPicture::suits_target(content.width, content.height)) {
    if (!picture_) {
      const TextureView image = upload(frame);
      picture_.keep(content.width, content.height, [&] { draw(frame, image); });
    }
    clear(frame);
    picture_.copy_to(viewport);
  } else {
    shown_.reset();
    picture_.forget();
    const TextureView image = upload(frame);
    clear(frame);
    draw(frame, image);
  }
  gl::throwOnGLError("DisplayRenderer::render");
  if (content.width > 0 && content.height > 0) shown_ = content;
  record_timing_mark("frame end");
}

DisplayRenderer::Frame DisplayRenderer::take_frame(GLsizei width, GLsizei height) {
  Frame frame;
  Content& content = frame.content;
  {
    const std::lock_guard lock(settings_mutex_);
    content.common = settings_;
    content.layers = layers_;
  }
  frame.image = display_data_.image();
  frame.overlay_image = overlay_data_.image();
  content.image = frame.image->revision;
  content.overlay_image = frame.overlay_image->revision;
  content.width = width;
  content.height = height;
  return frame;
}

// Colour maps and the image, filtered.
TextureView DisplayRenderer::upload(const Frame& frame) {
  for (std::size_t i = 0; i < layer_count; ++i) {
    colormap_textures_[i].upload(frame.content.layers[i].colormap);
  }
  const FilterSwitches& filters = frame.content.common.filters;
  if (!filters.any()) return display_data_.upload(*frame.image, TexelLayout::single);
  const TextureView image = display_data_.upload(*frame.image, TexelLayout::fours);
  return filters_.run(image, frame.image->revision, filters, quad_);
}

void DisplayRenderer::clear(const Frame& frame) const {
  const auto& background = frame.content.common.backgroundColor;
  glClearColor(background[0], background[1], background[2], background[3]);
  glClear(GL_COLOR_BUFFER_BIT);
}

void DisplayRenderer::draw(const Frame& frame, const TextureView& image) {
  if (frame.content.width <= 0 || frame.content.height <= 0) return;
  draw_base(frame, image);
  draw_overlays(frame, image);
}

template <class Program>
void DisplayRenderer::set_part(const Program& program, const Content& content) {
  const PicturePart part = content.shown();
  const auto [scale, offset] = part.to_target(content.width, content.height);
  glUniform2f(program.displaySize, static_cast<float>(part.width), static_cast<float>(part.height));
  glUniform4f(program.part, scale[0], scale[1], offset[0], offset[1]);
}

void DisplayRenderer::draw_base(const Frame& frame, const TextureView& image) {
  // Whole samples: a driver that draws with the processor compiles anew for each number of them.
  const auto samples = [](std::int64_t texels, GLsizei pixels) {
    return std::max(std::floor(static_cast<float>(texels) / static_cast<float>(pixels)), 1.0F);
  };
  const gl::PassMark mark("draw image");
  const Content& content = frame.content;
  const LayerSettings& layer = content.layers[0].settings;
  const ImageExtent& extent = image.extent;
  const DisplayProgram& program = built(display_, image.layout);

  program.shader.use();
  bind_texture(display_unit, GL_TEXTURE_2D, image.texture);
  bind_texture(color_unit, GL_TEXTURE_1D, colormap_textures_[0].get());
  glUniform1i(program.displayTex, display_unit);
  glUniform1i(program.colorTex, color_unit);
  glUniform1f(program.lowerValue, layer.lowerValue);
  glUniform1f(program.upperValue, layer.upperValue);
  set_extent(program.textureSize, extent);
  set_extent(program.texel_count, texels_of(extent, image.layout));
  set_part(program, content);
  glUniform2f(program.dpp, samples(extent.depth, content.shown().height),
              samples(extent.a_scans, content.shown().width));
  glUniform1f(program.gamma, 1.0F);
  glUniform1i(program.flip, content.common.flip);
  quad_.draw();
}

void DisplayRenderer::draw_overlays(const Frame& frame, const TextureView& image) {
  const auto& layers = frame.content.layers;
  const auto shown = [](const Layer& layer) { return layer.settings.enabled; };
  if (std::none_of(layers.begin() + 1, layers.end(), shown)) return;

  const gl::PassMark mark("draw overlays");
  const TextureView overlay = overlay_data_.upload(*frame.overlay_image, TexelLayout::single);
  const OverlayProgram& program = built(overlay_, image.layout);
  const gl::Blending blending;
  program.shader.use();
  bind_texture(display_unit, GL_TEXTURE_2D, image.texture);
  bind_texture(overlay_unit, GL_TEXTURE_2D, overlay.texture);
  set_extent(program.textureSize, image.extent);
  set_extent(program.texel_count, texels_of(image.extent, image.layout));
  for (std::size_t i = 1; i < layer_count; ++i) {
    if (shown(layers[i])) draw_overlay(frame, program, i);
  }
}

void DisplayRenderer::draw_overlay(const Frame& frame, const OverlayProgram& program, std::size_t index) {
  const Content& content = frame.content;
  const LayerSettings& layer = content.layers[index].settings;
  bind_texture(color_unit, GL_TEXTURE_1D, colormap_textures_[index].get());
  glUniform1i(program.displayTex, display_unit);
  glUniform1i(program.overlayTex, overlay_unit);
  glUniform1i(program.colorTex, color_unit);
  glUniform1f(program.lowerValue, layer.lowerValue);
  glUniform1f(program.upperValue, layer.upperValue);
  glUniform1f(program.threshold, content.common.threshold);
  set_part(program, content);
  glUniform1i(program.flip, content.common.flip);
  quad_.draw();
}

}  // namespace oct
