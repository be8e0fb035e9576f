#include "gl/context/opengl_loader.h"

#include <atomic>
#include <cstdio>
#include <mutex>
#include <string_view>

#include "core/console.h"
#include "core/exception.h"
#include "gl/context/context_identity.h"
#include "gl/context/current_context.h"
#include "gl/gl.h"
#include "gl/opengl_error.h"

namespace oct::gl {
namespace {

struct Loader {
  std::mutex mutex;  // GLEW writes its function pointers without one
  std::atomic<std::size_t> driver{
      0};  // whose entry points are loaded; its version was sufficient. 0: nobody's
};

Loader loader;

void load(const char* failure) {
  glewExperimental = GL_TRUE;  // core contexts do not list extensions the way GLEW asks for them
  const GLenum result = glewInit();
  // In a context of another window system than EGL, GLEW has loaded OpenGL by then and misses EGL's
  // functions only.
  const bool loaded = result == GLEW_OK || (is_context_current() && glCreateShader);
  if (!loaded) {
    write_output("Glew error: " + std::to_string(result));
    write_output("glewInit failed.");
    throw OpenGLError(failure);
  }
  discard_gl_errors();  // GLEW's probing leaves some behind in core contexts
}

}  // namespace

void initGlew(const char* load_failure) {
  const std::lock_guard lock(loader.mutex);
  // Before loading: a driver that is too old has no entry points for most, and would take those away that
  // contexts of another driver are using.
  if (is_context_current()) checkOpenGLVersion(3, 0);
  if (is_loaded_for_current_driver()) return;
  load(load_failure);
  loader.driver = current_driver().card;
  forget_current_identity();
}

void require_opengl(const char* load_failure) {
  const bool current = current_driver().card != 0;
  if (!glewInitialized() || (current && !is_loaded_for_current_driver())) initGlew(load_failure);
  if (!current) throw StateError("No OpenGL context is current on the calling thread. ");
}

void checkOpenGLVersion(int required_major, int required_minor) {
  const Version version = current_version();
  const std::string found = std::to_string(version.major) + "." + std::to_string(version.minor);
  write_output("Found OpenGL " + found);
  if (version >= Version{required_major, required_minor}) return;
  throw OpenGLError("OpenGL " + std::to_string(required_major) + "." + std::to_string(required_minor) +
                    " required. Version is currently " + found);
}

Version current_version() {
  Version version{integer(GL_MAJOR_VERSION), integer(GL_MINOR_VERSION)};
  if (version.major == 0 && is_context_current()) {
    discard_gl_errors();  // below 3.0 OpenGL does not know the question
    std::sscanf(opengl_text(GL_VERSION).data(), "%d.%d", &version.major, &version.minor);
  }
  return version;
}

bool glewInitialized() {
  return loader.driver != 0;
}

bool is_loaded_for_current_driver() {
  return loader.driver != 0 && loader.driver == current_driver().card;
}

std::string_view opengl_text(unsigned int name) {
  const auto* const text = reinterpret_cast<const char*>(glGetString(name));
  return text ? text : "";
}

std::string driver_name() {
  return std::string(opengl_text(GL_VENDOR))
      .append("\n")
      .append(opengl_text(GL_RENDERER))
      .append("\n")
      .append(opengl_text(GL_VERSION));
}

}  // namespace oct::gl
