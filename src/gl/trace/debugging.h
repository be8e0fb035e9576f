// What OpenGL debuggers are told: groups of calls, names of objects; and what OpenGL tells when it is debugged. Only
// where the environment asks for it.
#pragma once

#include <string_view>

#include "gl/gl_names.h"

namespace oct::gl {

// Whether OCT_RENDERING_DEBUG_CONTEXT is set, and not to 0. The library's own contexts are debug contexts then, of a core
// profile.
bool debugging();

// For tests, in place of the environment.
void set_debugging(bool debugging);

// Lets the current context, one of the library's own, write its messages to the log.
void log_opengl_messages();

// A group of calls of the current context. Ends with the object, in the context that it began in.
class DebugGroup {
 public:
  explicit DebugGroup(std::string_view name);
  ~DebugGroup();
  DebugGroup(const DebugGroup&) = delete;
  DebugGroup& operator=(const DebugGroup&) = delete;

 private:
  void* context_ = nullptr;
  bool open_ = false;
};

void label_object(GLenum identifier, GLuint name, std::string_view text);

// Says what an object is for. OpenGL must have seen it bound once. Nothing for an empty owner.
template <class Kind>
void label(const Name<Kind>& name, std::string_view text) {
  if (debugging() && name) label_object(Kind::identifier, name.get(), text);
}

}  // namespace oct::gl
