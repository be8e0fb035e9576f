// What the library's calls borrow of a client's OpenGL context, and give back.
#pragma once

#include <array>
#include <optional>

#include "gl/gl.h"
#include "gl/pixel_store.h"

namespace oct::gl {

// What is bound to the first texture unit, which is the active one while it lives.
class FirstTextureUnit {
 public:
  FirstTextureUnit();
  ~FirstTextureUnit();
  FirstTextureUnit(const FirstTextureUnit&) = delete;
  FirstTextureUnit& operator=(const FirstTextureUnit&) = delete;

 private:
  GLint active_unit_ = 0;
  std::array<GLint, 3> textures_{};
};

// What decides how something is drawn. While it lives this is as OpenGL starts, but for the target: framebuffers,
// viewport and scissor are the client's to choose, and whoever draws elsewhere gives them back himself
// (DrawTargetGuard).
//
// Every setting is asked for. Then it is set only where the client's is another, and given back only there and
// where the library itself leaves another: a client's context mostly is as OpenGL starts.
class DrawingState {
 public:
  DrawingState();
  ~DrawingState();
  DrawingState(const DrawingState&) = delete;
  DrawingState& operator=(const DrawingState&) = delete;

 private:
  void save();
  void reset() const;
  void set_capabilities(bool enabled) const;  // those that the client has on
  void set_polygon_modes() const;
  bool has_other_polygon_mode() const;
  bool masks_colors() const;

  bool compatibility_profile_ = false;
  bool has_clip_control_ = false;

  std::array<bool, 21> enabled_{};
  std::array<bool, 3> compatibility_enabled_{};

  GLint program_ = 0;
  GLint vertex_array_ = 0;
  GLint array_buffer_ = 0;
  std::array<GLint, 6> textures_{};  // of the units after the first
  std::array<GLint, 6> samplers_{};

  std::array<GLboolean, 4> color_mask_{};
  std::array<GLfloat, 4> clear_color_{};
  std::array<GLint, 2> blend_equations_{};
  std::array<GLint, 4> blend_factors_{};
  GLboolean depth_mask_ = GL_TRUE;
  GLint depth_function_ = 0;
  GLdouble clear_depth_ = 0.0;
  std::array<GLdouble, 2> depth_range_{};
  std::array<GLint, 2> polygon_modes_{};
  std::array<GLfloat, 2> polygon_offset_{};
  GLint culled_face_ = 0;
  GLint front_face_ = 0;
  GLfloat line_width_ = 1.0F;
  std::array<GLint, 2> clip_space_{};
};

// What an export holds while it works in a client's context. Without a context that is current and usable
// it does nothing, and the call fails with its own text. Exports upload and draw; none reads pixels back.
class ClientState {
 public:
  enum class Use { transfer, drawing };

  explicit ClientState(Use use);

 private:
  std::optional<ClientUnpack> unpack_;
  std::optional<FirstTextureUnit> textures_;
  std::optional<DrawingState> drawing_;
};

}  // namespace oct::gl
