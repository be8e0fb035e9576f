#include "gl/context/client_state.h"

#include <cstddef>
#include <exception>

#include "gl/context/context_identity.h"
#include "gl/context/opengl_loader.h"

namespace oct::gl {
namespace {

struct TextureTarget {
  GLenum name;
  GLenum binding;
};
constexpr TextureTarget line{GL_TEXTURE_1D, GL_TEXTURE_BINDING_1D};
constexpr TextureTarget plane{GL_TEXTURE_2D, GL_TEXTURE_BINDING_2D};
constexpr TextureTarget block{GL_TEXTURE_3D, GL_TEXTURE_BINDING_3D};

// What the programs of the renderers sample. The first unit serves uploads of every kind as well.
constexpr std::array<TextureTarget, 3> first_unit{line, plane, block};
struct UnitTarget {
  GLuint unit;
  TextureTarget target;
};
constexpr std::array<UnitTarget, 6> further_units{
    {{1, line}, {1, plane}, {2, plane}, {3, block}, {4, line}, {5, block}}};

// All off while the library draws. So is multisampling: beyond a silhouette, where a sample may lie that its
// pixel's centre misses, a ray has no beginning and no end. Without it coverage, masks and alpha of samples do
// nothing, nor do the offsets of lines and points where polygons are filled.
constexpr std::array<GLenum, 21> capabilities{GL_BLEND,
                                              GL_DEPTH_TEST,
                                              GL_CULL_FACE,
                                              GL_STENCIL_TEST,
                                              GL_COLOR_LOGIC_OP,
                                              GL_POLYGON_OFFSET_FILL,
                                              GL_LINE_SMOOTH,
                                              GL_POLYGON_SMOOTH,
                                              GL_FRAMEBUFFER_SRGB,
                                              GL_RASTERIZER_DISCARD,
                                              GL_PRIMITIVE_RESTART,
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

GLuint name_of(GLint binding) {
  return static_cast<GLuint>(binding);
}

void set_enabled(GLenum capability, bool enabled) {
  enabled ? glEnable(capability) : glDisable(capability);
}

// Calls use(row, first) with the unit of each row active; first: of its unit.
template <class Use>
void for_each_further_unit(Use&& use) {
  GLuint active = 0;
  for (std::size_t i = 0; i < further_units.size(); ++i) {
    const bool first = further_units[i].unit != active;
    active = further_units[i].unit;
    if (first) glActiveTexture(GL_TEXTURE0 + active);
    use(i, first);
  }
  glActiveTexture(GL_TEXTURE0);
}

// Where there is no context that can be worked in, the call finds out as well, and says so.
bool usable() {
  if (current_driver().card == 0) return false;
  try {
    require_opengl();
  } catch (const std::exception&) {
    return false;
  }
  return current_driver().version >= Version{3, 3} && glBindSampler;
}

}  // namespace

FirstTextureUnit::FirstTextureUnit() : active_unit_(integer(GL_ACTIVE_TEXTURE)) {
  if (active_unit_ != GL_TEXTURE0) glActiveTexture(GL_TEXTURE0);
  for (std::size_t i = 0; i < first_unit.size(); ++i) textures_[i] = integer(first_unit[i].binding);
}

FirstTextureUnit::~FirstTextureUnit() {
  glActiveTexture(GL_TEXTURE0);  // what failed may have left another
  for (std::size_t i = 0; i < first_unit.size(); ++i)
    glBindTexture(first_unit[i].name, name_of(textures_[i]));
  if (active_unit_ != GL_TEXTURE0) glActiveTexture(static_cast<GLenum>(active_unit_));
}

DrawingState::DrawingState()
    : compatibility_profile_((integer(GL_CONTEXT_PROFILE_MASK) & GL_CONTEXT_COMPATIBILITY_PROFILE_BIT) != 0),
      has_clip_control_(current_driver().version >= Version{4, 5} && glClipControl) {
  save();
  reset();
}

void DrawingState::save() {
  for (std::size_t i = 0; i < capabilities.size(); ++i) enabled_[i] = glIsEnabled(capabilities[i]) == GL_TRUE;
  for (std::size_t i = 0; compatibility_profile_ && i < compatibility_capabilities.size(); ++i) {
    compatibility_enabled_[i] = glIsEnabled(compatibility_capabilities[i]) == GL_TRUE;
  }

  program_ = integer(GL_CURRENT_PROGRAM);
  vertex_array_ = integer(GL_VERTEX_ARRAY_BINDING);
  array_buffer_ = integer(GL_ARRAY_BUFFER_BINDING);
  samplers_[0] = integer(GL_SAMPLER_BINDING);
  for_each_further_unit([this](std::size_t row, bool first) {
    textures_[row] = integer(further_units[row].target.binding);
    if (first) samplers_[further_units[row].unit] = integer(GL_SAMPLER_BINDING);
  });

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

void DrawingState::set_capabilities(bool enabled) const {
  for (std::size_t i = 0; i < capabilities.size(); ++i) {
    if (enabled_[i]) set_enabled(capabilities[i], enabled);
  }
  for (std::size_t i = 0; i < compatibility_capabilities.size(); ++i) {
    if (compatibility_enabled_[i]) set_enabled(compatibility_capabilities[i], enabled);
  }
}

bool DrawingState::masks_colors() const {
  return color_mask_ != std::array<GLboolean, 4>{GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE};
}

// A core profile has one mode for both faces, and may leave the second without an answer.
bool DrawingState::has_other_polygon_mode() const {
  return polygon_modes_[0] != GL_FILL || (compatibility_profile_ && polygon_modes_[1] != GL_FILL);
}

void DrawingState::set_polygon_modes() const {
  if (compatibility_profile_) {
    glPolygonMode(GL_FRONT, static_cast<GLenum>(polygon_modes_[0]));
    glPolygonMode(GL_BACK, static_cast<GLenum>(polygon_modes_[1]));
  } else {
    glPolygonMode(GL_FRONT_AND_BACK, static_cast<GLenum>(polygon_modes_[0]));
  }
}

void DrawingState::reset() const {
  set_capabilities(false);
  if (program_ != 0) glUseProgram(0);
  if (vertex_array_ != 0) glBindVertexArray(0);
  for (GLuint unit = 0; unit < samplers_.size(); ++unit) {
    if (samplers_[unit] != 0) glBindSampler(unit, 0);
  }
  if (masks_colors()) glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
  if (blend_equations_ != std::array<GLint, 2>{GL_FUNC_ADD, GL_FUNC_ADD}) glBlendEquation(GL_FUNC_ADD);
  if (depth_mask_ != GL_TRUE) glDepthMask(GL_TRUE);
  if (depth_function_ != GL_LESS) glDepthFunc(GL_LESS);
  if (clear_depth_ != 1.0) glClearDepth(1.0);
  if (depth_range_ != std::array{0.0, 1.0}) glDepthRange(0.0, 1.0);
  if (has_other_polygon_mode()) glPolygonMode(GL_FRONT_AND_BACK, GL_FILL);
  if (culled_face_ != GL_BACK) glCullFace(GL_BACK);
  if (front_face_ != GL_CCW) glFrontFace(GL_CCW);
  if (line_width_ != 1.0F) glLineWidth(1.0F);
  if (has_clip_control_ && clip_space_ != std::array<GLint, 2>{GL_LOWER_LEFT, GL_NEGATIVE_ONE_TO_ONE})
    glClipControl(GL_LOWER_LEFT, GL_NEGATIVE_ONE_TO_ONE);
}

DrawingState::~DrawingState() {
  set_capabilities(true);

  // One that was deleted while it was in use is gone as soon as another is used.
  glUseProgram(program_ != 0 && glIsProgram(name_of(program_)) == GL_TRUE ? name_of(program_) : 0);
  glBindVertexArray(name_of(vertex_array_));
  glBindBuffer(GL_ARRAY_BUFFER, name_of(array_buffer_));
  for_each_further_unit([this](std::size_t row, bool) {
    glBindTexture(further_units[row].target.name, name_of(textures_[row]));
  });
  for (GLuint unit = 0; unit < samplers_.size(); ++unit) {
    if (samplers_[unit] != 0) glBindSampler(unit, name_of(samplers_[unit]));
  }

  if (masks_colors()) glColorMask(color_mask_[0], color_mask_[1], color_mask_[2], color_mask_[3]);
  glClearColor(clear_color_[0], clear_color_[1], clear_color_[2], clear_color_[3]);
  if (blend_equations_ != std::array<GLint, 2>{GL_FUNC_ADD, GL_FUNC_ADD})
    glBlendEquationSeparate(static_cast<GLenum>(blend_equations_[0]),
                            static_cast<GLenum>(blend_equations_[1]));
  glBlendFuncSeparate(static_cast<GLenum>(blend_factors_[0]), static_cast<GLenum>(blend_factors_[1]),
                      static_cast<GLenum>(blend_factors_[2]), static_cast<GLenum>(blend_factors_[3]));
  if (depth_mask_ != GL_TRUE) glDepthMask(depth_mask_);
  glDepthFunc(static_cast<GLenum>(depth_function_));
  if (clear_depth_ != 1.0) glClearDepth(clear_depth_);
  if (depth_range_ != std::array{0.0, 1.0}) glDepthRange(depth_range_[0], depth_range_[1]);
  if (has_other_polygon_mode()) set_polygon_modes();
  glPolygonOffset(polygon_offset_[0], polygon_offset_[1]);
  glCullFace(static_cast<GLenum>(culled_face_));
  glFrontFace(static_cast<GLenum>(front_face_));
  if (line_width_ != 1.0F) glLineWidth(line_width_);
  if (has_clip_control_ && clip_space_ != std::array<GLint, 2>{GL_LOWER_LEFT, GL_NEGATIVE_ONE_TO_ONE})
    glClipControl(static_cast<GLenum>(clip_space_[0]), static_cast<GLenum>(clip_space_[1]));
}

ClientState::ClientState(Use use) {
  if (!usable()) return;
  unpack_.emplace();
  textures_.emplace();
  if (use == Use::drawing) drawing_.emplace();
}

}  // namespace oct::gl
