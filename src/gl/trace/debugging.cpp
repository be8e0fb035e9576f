#include "gl/trace/debugging.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <string>

#include "core/log.h"
#include "core/platform.h"
#include "gl/context/context_identity.h"
#include "gl/context/current_context.h"
#include "gl/context/opengl_loader.h"

namespace oct::gl {
namespace {

constexpr std::size_t longest_text = 200;
constexpr unsigned most_messages = 1000;  // a frame that fails fails in every frame

std::atomic<bool>& debugging_flag() {
  static std::atomic<bool> flag{is_switched_on("OCT_RENDERING_DEBUG_CONTEXT")};
  return flag;
}

bool has_debug_functions() {
  const bool loaded =
      is_loaded_for_current_driver() && glPushDebugGroup && glObjectLabel && glDebugMessageCallback;
  return loaded && (current_driver().version >= Version{4, 3} || GLEW_KHR_debug);
}

const char* text_of_type(GLenum type) {
  switch (type) {
    case GL_DEBUG_TYPE_ERROR:
      return "error";
    case GL_DEBUG_TYPE_DEPRECATED_BEHAVIOR:
      return "deprecated behaviour";
    case GL_DEBUG_TYPE_UNDEFINED_BEHAVIOR:
      return "undefined behaviour";
    case GL_DEBUG_TYPE_PORTABILITY:
      return "portability";
    case GL_DEBUG_TYPE_PERFORMANCE:
      return "performance";
    default:
      return "message";
  }
}

// Calls nothing of OpenGL's, which would call back.
void GLAPIENTRY log_message(GLenum, GLenum type, GLuint, GLenum, GLsizei length, const GLchar* text,
                            const void*) {
  static std::atomic<unsigned> count{0};
  const unsigned number = ++count;
  if (number > most_messages) return;
  try {
    std::string_view line(
        text, length < 0 ? std::char_traits<char>::length(text) : static_cast<std::size_t>(length));
    while (!line.empty() && line.back() == '\n') line.remove_suffix(1);
    log() << "OpenGL " << text_of_type(type) << ": " << line;
    if (number == most_messages) log() << "OpenGL: further messages are not logged. ";
  } catch (const std::exception&) {
    // Through the driver nothing may be thrown.
  }
}

}  // namespace

bool debugging() {
  return debugging_flag().load(std::memory_order_relaxed);
}

void set_debugging(bool debugging) {
  debugging_flag() = debugging;
}

void log_opengl_messages() {
  if (!debugging() || !has_debug_functions()) return;
  glEnable(GL_DEBUG_OUTPUT);
  glEnable(GL_DEBUG_OUTPUT_SYNCHRONOUS);  // on the thread, and within the call, that they are about
  glDebugMessageControl(GL_DONT_CARE, GL_DONT_CARE, GL_DEBUG_SEVERITY_NOTIFICATION, 0, nullptr, GL_FALSE);
  glDebugMessageCallback(log_message, nullptr);
}

DebugGroup::DebugGroup(std::string_view name) {
  if (!debugging() || !has_debug_functions()) return;
  const GLint depth = integer(GL_DEBUG_GROUP_STACK_DEPTH);
  if (depth >= integer(GL_MAX_DEBUG_GROUP_STACK_DEPTH)) return;  // the client's groups are that deep
  const auto length = static_cast<GLsizei>(std::min(name.size(), longest_text));
  glPushDebugGroup(GL_DEBUG_SOURCE_APPLICATION, 0, length, name.data());
  // Whatever became of it: only what was begun is ended.
  open_ = integer(GL_DEBUG_GROUP_STACK_DEPTH) > depth;
  context_ = current_context();
}

DebugGroup::~DebugGroup() {
  if (open_ && is_context_current() && current_context() == context_) glPopDebugGroup();
}

void label_object(GLenum identifier, GLuint name, std::string_view text) {
  if (!has_debug_functions()) return;
  const auto length = static_cast<GLsizei>(std::min(text.size(), longest_text));
  glObjectLabel(identifier, name, length, text.data());
}

}  // namespace oct::gl
