#include "support/opengl/foreign_state.h"

#include <algorithm>
#include <array>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "gl/gl.h"

namespace oct::test {
namespace {

constexpr GLenum clip_distance = GL_CLIP_DISTANCE0;

bool is_compatibility_profile() {
  GLint mask = 0;
  glGetIntegerv(GL_CONTEXT_PROFILE_MASK, &mask);
  return (mask & GL_CONTEXT_COMPATIBILITY_PROFILE_BIT) != 0;
}

bool has_clip_control() {
  std::array<GLint, 2> version{};
  glGetIntegerv(GL_MAJOR_VERSION, &version[0]);
  glGetIntegerv(GL_MINOR_VERSION, &version[1]);
  return version >= std::array{4, 5};
}

void set_pixel_store(GLenum kind) {
  constexpr std::array<GLenum, 7> settings{
      GL_UNPACK_ROW_LENGTH,  GL_UNPACK_SKIP_ROWS,  GL_UNPACK_SKIP_PIXELS, GL_UNPACK_IMAGE_HEIGHT,
      GL_UNPACK_SKIP_IMAGES, GL_UNPACK_SWAP_BYTES, GL_UNPACK_LSB_FIRST};
  constexpr std::array<GLenum, 7> pack_settings{
      GL_PACK_ROW_LENGTH,  GL_PACK_SKIP_ROWS,  GL_PACK_SKIP_PIXELS, GL_PACK_IMAGE_HEIGHT,
      GL_PACK_SKIP_IMAGES, GL_PACK_SWAP_BYTES, GL_PACK_LSB_FIRST};
  const bool unpack = kind == GL_UNPACK_ALIGNMENT;
  glPixelStorei(kind, 8);
  GLint value = 300;
  for (const GLenum setting : unpack ? settings : pack_settings)
    glPixelStorei(setting, value = value > 2 ? value / 3 : 1);
}

void bind_buffer(GLenum target) {
  GLuint buffer = 0;
  glGenBuffers(1, &buffer);
  glBindBuffer(target, buffer);
  glBufferData(target, 64, nullptr, GL_STATIC_DRAW);
}

void bind_textures_and_samplers() {
  for (GLuint unit = 0; unit < 11; ++unit) {
    glActiveTexture(GL_TEXTURE0 + unit);
    std::array<GLuint, 3> textures{};
    glGenTextures(3, textures.data());
    glBindTexture(GL_TEXTURE_1D, textures[0]);
    glBindTexture(GL_TEXTURE_2D, textures[1]);
    glBindTexture(GL_TEXTURE_3D, textures[2]);
    GLuint sampler = 0;
    glGenSamplers(1, &sampler);
    // Wants mipmaps, which the library's textures have not: they are black.
    glSamplerParameteri(sampler, GL_TEXTURE_MIN_FILTER, GL_LINEAR_MIPMAP_LINEAR);
    glSamplerParameteri(sampler, GL_TEXTURE_WRAP_S, GL_REPEAT);
    glBindSampler(unit, sampler);
  }
  glActiveTexture(GL_TEXTURE5);
}

void use_geometry() {
  GLuint vertex_array = 0;
  glGenVertexArrays(1, &vertex_array);
  glBindVertexArray(vertex_array);
  bind_buffer(GL_ELEMENT_ARRAY_BUFFER);
  bind_buffer(GL_ARRAY_BUFFER);
  glVertexAttribPointer(0, 3, GL_FLOAT, GL_FALSE, 0, nullptr);
}

void use_program() {
  const GLuint shader = glCreateShader(GL_VERTEX_SHADER);
  const char* const text = "#version 330 core\nvoid main() { gl_Position = vec4(0.0); }\n";
  glShaderSource(shader, 1, &text, nullptr);
  glCompileShader(shader);
  const GLuint program = glCreateProgram();
  glAttachShader(program, shader);
  glLinkProgram(program);
  glUseProgram(program);
}

// Tests of the fixed pipeline that a program's fragments undergo as well.
void fail_fixed_tests() {
  if (!is_compatibility_profile()) return;
  glEnable(GL_ALPHA_TEST), glAlphaFunc(GL_NEVER, 0.0F);
  glEnable(GL_LINE_STIPPLE), glLineStipple(1, 0);
  const std::array<GLubyte, 128> nothing{};
  glEnable(GL_POLYGON_STIPPLE), glPolygonStipple(nothing.data());
}

struct ForeignState {
  std::string name;
  std::function<void()> set;
};

// Each of them spoils a frame that does not see to it. The context keeps a few objects.
std::vector<ForeignState> foreign_states() {
  std::vector<ForeignState> states{
      // Before the unpack settings: llvmpipe, skipping pixels of a stipple, writes past its copy.
      {"alpha and stipple", fail_fixed_tests},
      {"unpack settings", [] { set_pixel_store(GL_UNPACK_ALIGNMENT); }},
      {"pack settings", [] { set_pixel_store(GL_PACK_ALIGNMENT); }},
      {"unpack buffer", [] { bind_buffer(GL_PIXEL_UNPACK_BUFFER); }},
      {"pack buffer", [] { bind_buffer(GL_PIXEL_PACK_BUFFER); }},
      {"textures and samplers", bind_textures_and_samplers},
      {"vertex array", use_geometry},
      {"program", use_program},
      {"scissor",
       [] {
         std::array<GLint, 4> viewport{};
         glGetIntegerv(GL_VIEWPORT, viewport.data());
         glScissor(viewport[0], viewport[1], viewport[2], viewport[3]);
         glEnable(GL_SCISSOR_TEST);
       }},
      {"clear values", [] { glClearColor(0.1F, 0.2F, 0.3F, 0.4F), glClearDepth(0.25), glClearStencil(3); }},
      {"blending",
       [] {
         glEnable(GL_BLEND);
         glBlendEquationSeparate(GL_FUNC_REVERSE_SUBTRACT, GL_MAX);
         glBlendFuncSeparate(GL_ZERO, GL_ONE, GL_DST_COLOR, GL_SRC_ALPHA);
       }},
      {"depth",
       [] {
         glEnable(GL_DEPTH_TEST), glDepthFunc(GL_NEVER), glDepthMask(GL_FALSE), glDepthRange(0.75, 0.5);
         glEnable(GL_DEPTH_CLAMP);
       }},
      {"faces", [] { glEnable(GL_CULL_FACE), glCullFace(GL_FRONT_AND_BACK), glFrontFace(GL_CW); }},
      {"polygons",
       [] {
         glPolygonMode(GL_FRONT_AND_BACK, GL_LINE);
         for (const GLenum kind : {GL_POLYGON_OFFSET_FILL, GL_POLYGON_OFFSET_LINE, GL_POLYGON_OFFSET_POINT})
           glEnable(kind);
         glPolygonOffset(-100.0F, -10000.0F);
         glEnable(GL_POLYGON_SMOOTH);
       }},
      {"lines", [] { glLineWidth(5.0F), glEnable(GL_LINE_SMOOTH); }},
      {"colour mask", [] { glColorMask(GL_TRUE, GL_FALSE, GL_FALSE, GL_FALSE); }},
      {"stencil", [] { glEnable(GL_STENCIL_TEST), glStencilFunc(GL_NEVER, 1, 1), glStencilMask(5); }},
      {"logic", [] { glEnable(GL_COLOR_LOGIC_OP), glLogicOp(GL_INVERT); }},
      {"samples",
       [] {
         for (const GLenum each :
              {GL_SAMPLE_ALPHA_TO_COVERAGE, GL_SAMPLE_ALPHA_TO_ONE, GL_SAMPLE_COVERAGE, GL_SAMPLE_MASK})
           glEnable(each);
         glSampleCoverage(0.0F, GL_FALSE), glSampleMaski(0, 0);
       }},
      {"primitive restart", [] { glEnable(GL_PRIMITIVE_RESTART), glPrimitiveRestartIndex(3); }},
      {"clip distances",
       [] {
         for (GLenum i = 0; i < 8; ++i) glEnable(clip_distance + i);
       }},
      {"sRGB", [] { glEnable(GL_FRAMEBUFFER_SRGB); }},
      {"discard", [] { glEnable(GL_RASTERIZER_DISCARD); }},
  };
  if (has_clip_control())
    states.push_back({"clip space", [] { glClipControl(GL_UPPER_LEFT, GL_ZERO_TO_ONE); }});
  return states;
}

// Bound until its end.
class ForeignTarget {
 public:
  ForeignTarget(GLenum format, GLsizei samples, int width, int height) {
    glGetIntegerv(GL_FRAMEBUFFER_BINDING, &before_);
    glGenFramebuffers(1, &framebuffer_);
    glGenRenderbuffers(2, renderbuffers_.data());
    glBindFramebuffer(GL_FRAMEBUFFER, framebuffer_);
    constexpr std::array<GLenum, 2> places{GL_COLOR_ATTACHMENT0, GL_DEPTH_ATTACHMENT};
    for (std::size_t i = 0; i < 2; ++i) {
      glBindRenderbuffer(GL_RENDERBUFFER, renderbuffers_[i]);
      glRenderbufferStorageMultisample(GL_RENDERBUFFER, samples, i == 0 ? format : GL_DEPTH_COMPONENT24,
                                       width, height);
      glFramebufferRenderbuffer(GL_FRAMEBUFFER, places[i], GL_RENDERBUFFER, renderbuffers_[i]);
    }
    glViewport(0, 0, width, height);
  }
  ~ForeignTarget() {
    glBindFramebuffer(GL_FRAMEBUFFER, static_cast<GLuint>(before_));
    glDeleteFramebuffers(1, &framebuffer_);
    glDeleteRenderbuffers(2, renderbuffers_.data());
  }
  ForeignTarget(const ForeignTarget&) = delete;
  ForeignTarget& operator=(const ForeignTarget&) = delete;

  GLuint framebuffer() const { return framebuffer_; }

 private:
  GLint before_ = 0;
  GLuint framebuffer_ = 0;
  std::array<GLuint, 2> renderbuffers_{};
};

Picture drawn_into(GLenum format, GLsizei samples, const Picture& size, const std::function<void()>& draw) {
  const auto [width, height] = std::pair(size.width, size.height);
  Picture picture(width, height);
  const ForeignTarget plain(GL_RGBA8, 0, width, height);
  const ForeignTarget target(format, samples, width, height);
  glEnable(GL_FRAMEBUFFER_SRGB);
  draw();
  glDisable(GL_FRAMEBUFFER_SRGB);
  glBindFramebuffer(GL_DRAW_FRAMEBUFFER, plain.framebuffer());
  glBlitFramebuffer(0, 0, width, height, 0, 0, width, height, GL_COLOR_BUFFER_BIT, GL_NEAREST);
  glBindFramebuffer(GL_READ_FRAMEBUFFER, plain.framebuffer());
  glReadPixels(0, 0, width, height, GL_BGRA, GL_UNSIGNED_BYTE, picture.bytes.data());
  return picture;
}

}  // namespace

StateValues state_values() {
  StateValues result;
  GLenum unit = 0;
  const auto add = [&](auto... queries) {
    for (const GLenum query : {static_cast<GLenum>(queries)...}) {
      result.push_back({query, unit, {}});
      glGetDoublev(query, result.back().values.data());
    }
  };
  add(GL_UNPACK_ALIGNMENT, GL_UNPACK_ROW_LENGTH, GL_UNPACK_IMAGE_HEIGHT, GL_UNPACK_SKIP_ROWS);
  add(GL_UNPACK_SKIP_PIXELS, GL_UNPACK_SKIP_IMAGES, GL_UNPACK_SWAP_BYTES, GL_UNPACK_LSB_FIRST);
  add(GL_PACK_ALIGNMENT, GL_PACK_ROW_LENGTH, GL_PACK_IMAGE_HEIGHT, GL_PACK_SKIP_ROWS, GL_PACK_SKIP_PIXELS);
  add(GL_PACK_SKIP_IMAGES, GL_PACK_SWAP_BYTES, GL_PACK_LSB_FIRST, GL_PIXEL_UNPACK_BUFFER_BINDING);
  add(GL_PIXEL_PACK_BUFFER_BINDING, GL_ARRAY_BUFFER_BINDING, GL_ELEMENT_ARRAY_BUFFER_BINDING);
  add(GL_VERTEX_ARRAY_BINDING, GL_CURRENT_PROGRAM, GL_DRAW_FRAMEBUFFER_BINDING);
  add(GL_READ_FRAMEBUFFER_BINDING, GL_RENDERBUFFER_BINDING, GL_VIEWPORT, GL_SCISSOR_BOX);
  add(GL_COLOR_WRITEMASK, GL_COLOR_CLEAR_VALUE, GL_DEPTH_CLEAR_VALUE, GL_DEPTH_FUNC, GL_DEPTH_WRITEMASK);
  add(GL_DEPTH_RANGE, GL_STENCIL_CLEAR_VALUE, GL_STENCIL_FUNC, GL_STENCIL_WRITEMASK, GL_BLEND_EQUATION_RGB);
  add(GL_BLEND_EQUATION_ALPHA, GL_BLEND_SRC_RGB, GL_BLEND_DST_RGB, GL_BLEND_SRC_ALPHA, GL_BLEND_DST_ALPHA);
  add(GL_CULL_FACE_MODE, GL_FRONT_FACE, GL_POLYGON_MODE, GL_POLYGON_OFFSET_FACTOR, GL_POLYGON_OFFSET_UNITS);
  add(GL_LINE_WIDTH, GL_LOGIC_OP_MODE, GL_PRIMITIVE_RESTART_INDEX, GL_SAMPLE_COVERAGE_VALUE);
  add(GL_ACTIVE_TEXTURE, GL_MULTISAMPLE, GL_SAMPLE_ALPHA_TO_COVERAGE, GL_SAMPLE_ALPHA_TO_ONE,
      GL_SAMPLE_COVERAGE);
  add(GL_SAMPLE_MASK, GL_CULL_FACE, GL_LINE_SMOOTH, GL_POLYGON_OFFSET_FILL, GL_POLYGON_OFFSET_LINE);
  add(GL_POLYGON_OFFSET_POINT, GL_POLYGON_SMOOTH, GL_BLEND, GL_COLOR_LOGIC_OP, GL_DEPTH_CLAMP);
  add(GL_DEPTH_TEST, GL_DITHER, GL_FRAMEBUFFER_SRGB, GL_PRIMITIVE_RESTART, GL_PROGRAM_POINT_SIZE);
  add(GL_RASTERIZER_DISCARD, GL_SCISSOR_TEST, GL_STENCIL_TEST, GL_TEXTURE_CUBE_MAP_SEAMLESS);
  for (GLenum i = 0; i < 8; ++i) add(clip_distance + i);
  if (has_clip_control()) add(GL_CLIP_ORIGIN, GL_CLIP_DEPTH_MODE);
  if (is_compatibility_profile()) add(GL_ALPHA_TEST, GL_POLYGON_STIPPLE, GL_LINE_STIPPLE);
  GLint active = 0;
  glGetIntegerv(GL_ACTIVE_TEXTURE, &active);
  for (unit = GL_TEXTURE0; unit < GL_TEXTURE0 + 11; ++unit) {
    glActiveTexture(unit);
    add(GL_TEXTURE_BINDING_1D, GL_TEXTURE_BINDING_2D, GL_TEXTURE_BINDING_3D, GL_SAMPLER_BINDING);
  }
  glActiveTexture(static_cast<GLenum>(active));
  return result;
}

testing::AssertionResult same_state(const StateValues& before, const StateValues& after) {
  std::ostringstream changed;
  for (std::size_t i = 0; i < before.size(); ++i) {
    if (before[i] != after.at(i)) changed << " 0x" << std::hex << before[i].query;
  }
  if (changed.str().empty()) return testing::AssertionSuccess();
  return testing::AssertionFailure() << "changed, by their numbers in OpenGL:" << changed.str();
}

void expect_same_whatever_the_client_sets(OffscreenTargetHandle target, const Picture& expected,
                                          const std::function<void()>& draw) {
  constexpr int left = 20;
  constexpr int bottom = 10;
  const auto [width, height] = std::pair(expected.width, expected.height);
  Picture whole(width + 30, height + 25);
  beginOffscreenFrame(target, static_cast<unsigned>(whole.width), static_cast<unsigned>(whole.height));
  EXPECT_TRUE(agree(drawn_into(GL_SRGB8_ALPHA8, 0, expected, draw), expected, exact)) << "sRGB";
  EXPECT_TRUE(agree(drawn_into(GL_RGBA8, 4, expected, draw), expected, exact)) << "multisampled";
  finishOffscreenFrame(target, nullptr);
  EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
  for (const ForeignState& state : foreign_states()) {
    beginOffscreenFrame(target, static_cast<unsigned>(whole.width), static_cast<unsigned>(whole.height));
    glViewport(left, bottom, width, height);
    state.set();
    const StateValues before = state_values();
    draw();
    EXPECT_TRUE(same_state(before, state_values())) << state.name;
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR)) << state.name;
    finishOffscreenFrame(target, whole.bytes.data());
    Picture picture(width, height);
    picture.for_each(
        [&](int x, int y) { std::copy_n(whole.pixel(left + x, bottom + y), 4, picture.pixel(x, y)); });
    EXPECT_TRUE(agree(picture, expected, {0, 0.999, 1})) << state.name;
  }
}

}  // namespace oct::test
