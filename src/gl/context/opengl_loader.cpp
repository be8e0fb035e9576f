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
  std::atomic<bool> glewInitialized{false};
  std::atomic<bool> usable{false};  // entry points loaded and a sufficient version seen
};

Loader loader;

struct Version {
  GLint major = 0;
  GLint minor = 0;
};

Version currentVersion() {
  Version version;
  glGetIntegerv(GL_MAJOR_VERSION, &version.major);
  glGetIntegerv(GL_MINOR_VERSION, &version.minor);
  return version;
}

}  // namespace

void initGlew(const char* loadFailure) {
  const std::lock_guard lock(loader.mutex);
  if (!loader.glewInitialized) {
    glewExperimental = GL_TRUE;  // core contexts do not list extensions the way GLEW asks for them
    const GLenum result = glewInit();
    // In a context of another window system than EGL, GLEW has loaded OpenGL by then and misses EGL's
    // functions only.
    const bool loaded = result == GLEW_OK || (isContextCurrent() && glCreateShader);
    if (!loaded) {
      writeOutput("Glew error: " + std::to_string(result));
      writeOutput("glewInit failed.");
      throw std::runtime_error(loadFailure);
    }
    loader.glewInitialized = true;
    glGetError();  // GLEW's probing leaves an error behind in core contexts
  }
  const Version version = currentVersion();
  checkOpenGLVersion(3, 0);
  if (version.major < 3) throw std::runtime_error("OpenGL version not supported. ");
  loader.usable = true;
}

void requireOpenGL(const char* loadFailure) {
  if (!loader.usable) initGlew(loadFailure);
  if (!isContextCurrent()) throw std::runtime_error("No OpenGL context is current on the calling thread. ");
}

void checkOpenGLVersion(int requiredMajor, int requiredMinor) {
  const Version version = currentVersion();
  const std::string found = std::to_string(version.major) + "." + std::to_string(version.minor);
  writeOutput("Found OpenGL " + found);
  if (version.major > requiredMajor || (version.major == requiredMajor && version.minor >= requiredMinor))
    return;
  throw std::runtime_error("OpenGL " + std::to_string(requiredMajor) + "." + std::to_string(requiredMinor) +
                           " required. Version is currently " + found);
}

bool glewInitialized() {
  return loader.glewInitialized;
}

}  // namespace oct::gl
