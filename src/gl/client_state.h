// What the library's calls borrow of a client's OpenGL context, and give back.
#pragma once

#include <array>
#include <optional>

#include "gl/gl.h"

namespace oct::gl {

// How pixels go to and from memory, and what is bound to the first texture unit: what an upload needs.
// While it lives memory is tightly packed, no pixel buffer is bound and the first unit is the active one.
class TransferState {
 public:
  TransferState();
  ~TransferState();
  TransferState(const TransferState&) = delete;
  TransferState& operator=(const TransferState&) = delete;

 private:
  std::array<GLint, 16> pixel_settings_{};
  GLint unpack_buffer_ = 0;
  GLint pack_buffer_ = 0;
  GLint active_unit_ = 0;
  std::array<GLint, 3> textures_{};
};

// What decides how something is drawn. While it lives this is as OpenGL starts, but for the target:
// framebuffers, viewport and scissor are the client's to choose, and are given back as well.
class DrawingState {
 public:
  DrawingState();
  ~DrawingState();
  DrawingState(const DrawingState&) = delete;
  DrawingState& operator=(const DrawingState&) = delete;

 private:
  void save();
  void reset() const;

  bool compatibility_profile_ = false;
  bool has_clip_control_ = false;

  std::array<bool, 27> enabled_{};
  std::array<bool, 3> compatibility_enabled_{};

  GLint draw_framebuffer_ = 0;
  GLint read_framebuffer_ = 0;
  std::array<GLint, 4> viewport_{};

  GLint program_ = 0;
  GLint vertex_array_ = 0;
  GLint array_buffer_ = 0;
  std::array<GLint, 9> textures_{};  // of the units after the first
  std::array<GLint, 10> samplers_{};

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
// it does nothing, and the call fails with its own text.
class ClientState {
 public:
  enum class Use { transfer, drawing };

  explicit ClientState(Use use);

 private:
  std::optional<TransferState> transfer_;
  std::optional<DrawingState> drawing_;
};

}  // namespace oct::gl
