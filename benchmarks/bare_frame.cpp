// The least that a program pays for its first frame: a context without surface, a program and a triangle in a
// framebuffer of 512 x 512 pixels, read back. Started and read by benchmark_start.
#include <cstring>
#include <vector>

#define GL_GLEXT_PROTOTYPES
#include <EGL/egl.h>
#include <EGL/eglext.h>
#include <GL/gl.h>
#include <GL/glext.h>

#include "start_stages.h"

namespace {

GLuint shader_of(GLenum kind, const char* text) {
  const GLuint shader = glCreateShader(kind);
  glShaderSource(shader, 1, &text, nullptr);
  glCompileShader(shader);
  return shader;
}

// A GPU if there is one, as the library does; else Mesa's software renderer.
EGLDisplay display() {
  EGLDeviceEXT device = nullptr;
  EGLint count = 0;
  const auto query = reinterpret_cast<PFNEGLQUERYDEVICESEXTPROC>(eglGetProcAddress("eglQueryDevicesEXT"));
  const auto text =
      reinterpret_cast<PFNEGLQUERYDEVICESTRINGEXTPROC>(eglGetProcAddress("eglQueryDeviceStringEXT"));
  if (query && text && query(1, &device, &count) && count == 1) {
    const char* const extensions = text(device, EGL_EXTENSIONS);
    if (!extensions || !std::strstr(extensions, "EGL_MESA_device_software"))
      return eglGetPlatformDisplay(EGL_PLATFORM_DEVICE_EXT, device, nullptr);
  }
  return eglGetPlatformDisplay(EGL_PLATFORM_SURFACELESS_MESA, EGL_DEFAULT_DISPLAY, nullptr);
}

}  // namespace

int main(int argc, char** argv) {
  oct::benchmark_start::Stages stages(argc, argv);
  stages.end("load");

  constexpr int side = 512;
  const EGLDisplay egl = display();
  EGLConfig config = nullptr;
  EGLint count = 0;
  const EGLint attributes[] = {EGL_SURFACE_TYPE, EGL_PBUFFER_BIT, EGL_RENDERABLE_TYPE, EGL_OPENGL_BIT,
                               EGL_NONE};
  if (!eglInitialize(egl, nullptr, nullptr) || !eglBindAPI(EGL_OPENGL_API) ||
      !eglChooseConfig(egl, attributes, &config, 1, &count) || count != 1 ||
      !eglMakeCurrent(egl, EGL_NO_SURFACE, EGL_NO_SURFACE,
                      eglCreateContext(egl, config, EGL_NO_CONTEXT, nullptr))) {
    std::fprintf(stderr, "no context\n");
    return 1;
  }
  GLuint names[3] = {};
  glGenFramebuffers(1, &names[0]);
  glGenRenderbuffers(1, &names[1]);
  glGenVertexArrays(1, &names[2]);
  glBindRenderbuffer(GL_RENDERBUFFER, names[1]);
  glRenderbufferStorage(GL_RENDERBUFFER, GL_RGBA8, side, side);
  glBindFramebuffer(GL_FRAMEBUFFER, names[0]);
  glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_RENDERBUFFER, names[1]);
  glViewport(0, 0, side, side);
  stages.end("context");

  const GLuint program = glCreateProgram();
  glAttachShader(program, shader_of(GL_VERTEX_SHADER, R"(#version 330 core
void main() { gl_Position = vec4(gl_VertexID == 1 ? 3.0 : -1.0, gl_VertexID == 2 ? 3.0 : -1.0, 0.0, 1.0); })"));
  glAttachShader(program, shader_of(GL_FRAGMENT_SHADER, R"(#version 330 core
out vec4 color;
void main() { color = vec4(0.5); })"));
  glLinkProgram(program);
  glUseProgram(program);
  glBindVertexArray(names[2]);
  glDrawArrays(GL_TRIANGLES, 0, 3);
  std::vector<unsigned char> pixels(std::size_t{side} * side * 4);
  glReadPixels(0, 0, side, side, GL_BGRA, GL_UNSIGNED_BYTE, pixels.data());
  stages.end("first_frame");
  if (glGetError() != GL_NO_ERROR || pixels[0] < 127 || pixels[0] > 128) {
    std::fprintf(stderr, "nothing was drawn\n");
    return 1;
  }
  std::_Exit(0);
}
