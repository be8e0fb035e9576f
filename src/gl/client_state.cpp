#include "gl/client_state.h"

#include <exception>

#include "gl/context/current_context.h"
#include "gl/context/opengl_loader.h"
#include "gl/pixel_store.h"

namespace oct::gl {
namespace {

constexpr std::array<GLenum, 16> pixel_settings{
    GL_UNPACK_SWAP_BYTES, GL_UNPACK_LSB_FIRST,   GL_UNPACK_ROW_LENGTH,  GL_UNPACK_IMAGE_HEIGHT,
    GL_UNPACK_SKIP_ROWS,  GL_UNPACK_SKIP_PIXELS, GL_UNPACK_SKIP_IMAGES, GL_UNPACK_ALIGNMENT,
    GL_PACK_SWAP_BYTES,   GL_PACK_LSB_FIRST,     GL_PACK_ROW_LENGTH,    GL_PACK_IMAGE_HEIGHT,
    GL_PACK_SKIP_ROWS,    GL_PACK_SKIP_PIXELS,   GL_PACK_SKIP_IMAGES,   GL_PACK_ALIGNMENT};

struct TextureTarget {
  GLenum name;
  GLenum binding;
};
constexpr TextureTarget line{GL_TEXTURE_1D, GL_TEXTURE_BINDING_1D};
constexpr TextureTarget plane{GL_TEXTURE_2D, GL_TEXTURE_BINDING_2D};
constexpr TextureTarget block{GL_TEXTURE_3D, GL_TEXTURE_BINDING_3D};

// What the programs of the renderers sample. The first unit serves uploads of every kind as well.
constexpr std::array<TextureTarget, 3> first_unit{line, plane, block};
constexpr std::array<TextureTarget, 9> further_units{line,  plane, block, line, line,
                                                     block, block, plane, plane};

// All off while the library draws. So is multisampling: beyond a silhouette, where a sample may lie that
// its pixel's centre misses, a ray has no beginning and no end.
constexpr std::array<GLenum, 27> capabilities{GL_BLEND,
                                              GL_DEPTH_TEST,
                                              GL_CULL_FACE,
                                              GL_STENCIL_TEST,
                                              GL_COLOR_LOGIC_OP,
                                              GL_POLYGON_OFFSET_FILL,
                                              GL_POLYGON_OFFSET_LINE,
                                              GL_POLYGON_OFFSET_POINT,
                                              GL_LINE_SMOOTH,
                                              GL_POLYGON_SMOOTH,
                                              GL_FRAMEBUFFER_SRGB,
                                              GL_RASTERIZER_DISCARD,
                                              GL_PRIMITIVE_RESTART,
                                              GL_SAMPLE_ALPHA_TO_COVERAGE,
                                              GL_SAMPLE_ALPHA_TO_ONE,
                                              GL_SAMPLE_COVERAGE,
                                              GL_SAMPLE_MASK,
                                              GL_DEPTH_CLAMP,
                                              GL_MULTISAMPLE,
                                              GL_CLIP_DISTANCE0,
                                              GL_CLIP_DISTANCE1,
                                              GL_CLIP_DISTANCE2,
                                              GL_CLIP_DISTANCE3,
                                              GL_CLIP_DISTANCE4,
                                              GL_CLIP_DISTANCE5,
                                              GL_CLIP_DISTANCE0 + 6,
                                              GL_CLIP_DISTANCE0 + 7};

// Tests of the fixed pipeline that touch what a program draws.
constexpr std::array<GLenum, 3> compatibility_capabilities{GL_ALPHA_TEST, GL_POLYGON_STIPPLE,
                                                           GL_LINE_STIPPLE};

GLint integer(GLenum query) {
  GLint value = 0;
  glGetIntegerv(query, &value);
  return value;
}

GLuint name_of(GLint binding) {
  return static_cast<GLuint>(binding);
}

void set_enabled(GLenum capability, bool enabled) {
  enabled ? glEnable(capability) : glDisable(capability);
}

GLenum unit_after_first(std::size_t index) {
  return GL_TEXTURE1 + static_cast<GLenum>(index);
}

bool at_least(GLint major, GLint minor) {
  const GLint found = integer(GL_MAJOR_VERSION);
  return found > major || (found == major && integer(GL_MINOR_VERSION) >= minor);
}

bool usable() {
  if (!is_context_current()) return false;
  try {
    require_opengl();
  } catch (const std::exception&) {
    return false;  // the call finds out as well, and says so
  }
  return at_least(3, 3) && glBindSampler;
}

}  // namespace

TransferState::TransferState() {
  for (std::size_t i = 0; i < pixel_settings.size(); ++i) pixel_settings_[i] = integer(pixel_settings[i]);
  unpack_buffer_ = integer(GL_PIXEL_UNPACK_BUFFER_BINDING);
  pack_buffer_ = integer(GL_PIXEL_PACK_BUFFER_BINDING);
  active_unit_ = integer(GL_ACTIVE_TEXTURE);
  glActiveTexture(GL_TEXTURE0);
  for (std::size_t i = 0; i < first_unit.size(); ++i) textures_[i] = integer(first_unit[i].binding);
  reset_pixel_unpack();
  reset_pixel_pack();
  glBindBuffer(GL_PIXEL_PACK_BUFFER, 0);
}

TransferState::~TransferState() {
  glActiveTexture(GL_TEXTURE0);
  for (std::size_t i = 0; i < first_unit.size(); ++i)
    glBindTexture(first_unit[i].name, name_of(textures_[i]));
  glActiveTexture(static_cast<GLenum>(active_unit_));
  glBindBuffer(GL_PIXEL_PACK_BUFFER, name_of(pack_buffer_));
  glBindBuffer(GL_PIXEL_UNPACK_BUFFER, name_of(unpack_buffer_));
  for (std::size_t i = 0; i < pixel_settings.size(); ++i)
    glPixelStorei(pixel_settings[i], pixel_settings_[i]);
}

DrawingState::DrawingState()
    : compatibility_profile_((integer(GL_CONTEXT_PROFILE_MASK) & GL_CONTEXT_COMPATIBILITY_PROFILE_BIT) != 0),
      has_clip_control_(at_least(4, 5) && glClipControl) {
  save();
  reset();
}

void DrawingState::save() {
  for (std::size_t i = 0; i < capabilities.size(); ++i) enabled_[i] = glIsEnabled(capabilities[i]) == GL_TRUE;
  for (std::size_t i = 0; compatibility_profile_ && i < compatibility_capabilities.size(); ++i) {
    compatibility_enabled_[i] = glIsEnabled(compatibility_capabilities[i]) == GL_TRUE;
  }
  draw_framebuffer_ = integer(GL_DRAW_FRAMEBUFFER_BINDING);
  read_framebuffer_ = integer(GL_READ_FRAMEBUFFER_BINDING);
  glGetIntegerv(GL_VIEWPORT, viewport_.data());

  program_ = integer(GL_CURRENT_PROGRAM);
  vertex_array_ = integer(GL_VERTEX_ARRAY_BINDING);
  array_buffer_ = integer(GL_ARRAY_BUFFER_BINDING);
  samplers_[0] = integer(GL_SAMPLER_BINDING);
  for (std::size_t i = 0; i < further_units.size(); ++i) {
    glActiveTexture(unit_after_first(i));
    textures_[i] = integer(further_units[i].binding);
    samplers_[i + 1] = integer(GL_SAMPLER_BINDING);
  }

  glGetBooleanv(GL_COLOR_WRITEMASK, color_mask_.data());
  glGetFloatv(GL_COLOR_CLEAR_VALUE, clear_color_.data());
  blend_equations_ = {integer(GL_BLEND_EQUATION_RGB), integer(GL_BLEND_EQUATION_ALPHA)};
  blend_factors_ = {integer(GL_BLEND_SRC_RGB), integer(GL_BLEND_DST_RGB), integer(GL_BLEND_SRC_ALPHA),
                    integer(GL_BLEND_DST_ALPHA)};
  glGetBooleanv(GL_DEPTH_WRITEMASK, &depth_mask_);
  depth_function_ = integer(GL_DEPTH_FUNC);
  glGetDoublev(GL_DEPTH_CLEAR_VALUE, &clear_depth_);
  glGetDoublev(GL_DEPTH_RANGE, depth_range_.data());
  glGetIntegerv(GL_POLYGON_MODE, polygon_modes_.data());
  glGetFloatv(GL_POLYGON_OFFSET_FACTOR, &polygon_offset_[0]);
  glGetFloatv(GL_POLYGON_OFFSET_UNITS, &polygon_offset_[1]);
  culled_face_ = integer(GL_CULL_FACE_MODE);
  front_face_ = integer(GL_FRONT_FACE);
  glGetFloatv(GL_LINE_WIDTH, &line_width_);
  if (has_clip_control_) clip_space_ = {integer(GL_CLIP_ORIGIN), integer(GL_CLIP_DEPTH_MODE)};
}

void DrawingState::reset() const {
  for (const GLenum capability : capabilities) glDisable(capability);
  for (std::size_t i = 0; compatibility_profile_ && i < compatibility_capabilities.size(); ++i) {
    glDisable(compatibility_capabilities[i]);
  }
  glUseProgram(0);
  glBindVertexArray(0);
  for (GLuint unit = 0; unit < samplers_.size(); ++unit) glBindSampler(unit, 0);
  glActiveTexture(GL_TEXTURE0);
  glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
  glDepthMask(GL_TRUE);
  glDepthFunc(GL_LESS);
  glClearDepth(1.0);
  glDepthRange(0.0, 1.0);
  glPolygonMode(GL_FRONT_AND_BACK, GL_FILL);
  glPolygonOffset(0.0F, 0.0F);
  glCullFace(GL_BACK);
  glFrontFace(GL_CCW);
  glLineWidth(1.0F);
  if (has_clip_control_) glClipControl(GL_LOWER_LEFT, GL_NEGATIVE_ONE_TO_ONE);
}

DrawingState::~DrawingState() {
  for (std::size_t i = 0; i < capabilities.size(); ++i) set_enabled(capabilities[i], enabled_[i]);
  for (std::size_t i = 0; compatibility_profile_ && i < compatibility_capabilities.size(); ++i) {
    set_enabled(compatibility_capabilities[i], compatibility_enabled_[i]);
  }
  glBindFramebuffer(GL_DRAW_FRAMEBUFFER, name_of(draw_framebuffer_));
  glBindFramebuffer(GL_READ_FRAMEBUFFER, name_of(read_framebuffer_));
  glViewport(viewport_[0], viewport_[1], viewport_[2], viewport_[3]);

  // One that was deleted while it was in use is gone as soon as another is used.
  glUseProgram(glIsProgram(name_of(program_)) == GL_TRUE ? name_of(program_) : 0);
  glBindVertexArray(name_of(vertex_array_));
  glBindBuffer(GL_ARRAY_BUFFER, name_of(array_buffer_));
  for (std::size_t i = 0; i < further_units.size(); ++i) {
    glActiveTexture(unit_after_first(i));
    glBindTexture(further_units[i].name, name_of(textures_[i]));
  }
  for (GLuint unit = 0; unit < samplers_.size(); ++unit) glBindSampler(unit, name_of(samplers_[unit]));

  glColorMask(color_mask_[0], color_mask_[1], color_mask_[2], color_mask_[3]);
  glClearColor(clear_color_[0], clear_color_[1], clear_color_[2], clear_color_[3]);
  glBlendEquationSeparate(static_cast<GLenum>(blend_equations_[0]), static_cast<GLenum>(blend_equations_[1]));
  glBlendFuncSeparate(static_cast<GLenum>(blend_factors_[0]), static_cast<GLenum>(blend_factors_[1]),
                      static_cast<GLenum>(blend_factors_[2]), static_cast<GLenum>(blend_factors_[3]));
  glDepthMask(depth_mask_);
  glDepthFunc(static_cast<GLenum>(depth_function_));
  glClearDepth(clear_depth_);
  glDepthRange(depth_range_[0], depth_range_[1]);
  // A core profile has one mode for both faces.
  if (compatibility_profile_ && polygon_modes_[0] != polygon_modes_[1]) {
    glPolygonMode(GL_FRONT, static_cast<GLenum>(polygon_modes_[0]));
    glPolygonMode(GL_BACK, static_cast<GLenum>(polygon_modes_[1]));
  } else {
    glPolygonMode(GL_FRONT_AND_BACK, static_cast<GLenum>(polygon_modes_[0]));
  }
  glPolygonOffset(polygon_offset_[0], polygon_offset_[1]);
  glCullFace(static_cast<GLenum>(culled_face_));
  glFrontFace(static_cast<GLenum>(front_face_));
  glLineWidth(line_width_);
  if (has_clip_control_) {
    glClipControl(static_cast<GLenum>(clip_space_[0]), static_cast<GLenum>(clip_space_[1]));
  }
}

ClientState::ClientState(Use use) {
  if (!usable()) return;
  transfer_.emplace();
  if (use == Use::drawing) drawing_.emplace();
}

}  // namespace oct::gl
