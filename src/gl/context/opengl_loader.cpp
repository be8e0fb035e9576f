#include "gl/context/opengl_loader.h"

#include <atomic>
#include <mutex>
#include <stdexcept>
#include <string>

#include "core/console.h"
#include "gl/context/current_context.h"
#include "gl/gl.h"

namespace oct::gl {
namespace {

struct Loader {
  std::mutex mutex;  // GLEW writes its function pointers without one
  std::atomic<bool> glew_initialized{false};
  std::atomic<bool> usable{false};  // entry points loaded and a sufficient version seen
};

Loader loader;

struct Version {
  GLint major = 0;
  GLint minor = 0;
};

Version current_version() {
  Version version;
  glGetIntegerv(GL_MAJOR_VERSION, &version.major);
  glGetIntegerv(GL_MINOR_VERSION, &version.minor);
  return version;
}

}  // namespace

void initGlew(const char* load_failure) {
  const std::lock_guard lock(loader.mutex);
  if (!loader.glew_initialized) {
    glewExperimental = GL_TRUE;  // core contexts do not list extensions the way GLEW asks for them
    const GLenum result = glewInit();
    // In a context of another window system than EGL, GLEW has loaded OpenGL by then and misses EGL's
    // functions only.
    const bool loaded = result == GLEW_OK || (is_context_current() && glCreateShader);
    if (!loaded) {
      write_output("Glew error: " + std::to_string(result));
      write_output("glewInit failed.");
      throw std::runtime_error(load_failure);
    }
    loader.glew_initialized = true;
    glGetError();  // GLEW's probing leaves an error behind in core contexts
  }
  const Version version = current_version();
  checkOpenGLVersion(3, 0);
  if (version.major < 3) throw std::runtime_error("OpenGL version not supported. ");
  loader.usable = true;
}

void require_opengl(const char* load_failure) {
  if (!loader.usable) initGlew(load_failure);
  if (!is_context_current()) throw std::runtime_error("No OpenGL context is current on the calling thread. ");
}

void checkOpenGLVersion(int required_major, int required_minor) {
  const Version version = current_version();
  const std::string found = std::to_string(version.major) + "." + std::to_string(version.minor);
  write_output("Found OpenGL " + found);
  if (version.major > required_major || (version.major == required_major && version.minor >= required_minor))
    return;
  throw std::runtime_error("OpenGL " + std::to_string(required_major) + "." + std::to_string(required_minor) +
                           " required. Version is currently " + found);
}

bool glewInitialized() {
  return loader.glew_initialized;
}

}  // namespace oct::gl
