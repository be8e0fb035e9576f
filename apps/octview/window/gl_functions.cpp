#include "octview/window/gl_functions.h"

#include <stdexcept>
#include <string>

#include <GLFW/glfw3.h>

namespace oct::app {
namespace {

template <class Function>
void load(Function& function, const char* name) {
  function = reinterpret_cast<Function>(glfwGetProcAddress(name));
  if (!function) throw std::runtime_error(std::string("OpenGL has no function ") + name);
}

}  // namespace

GlFunctions load_gl_functions() {
  GlFunctions gl{};
  load(gl.bind_framebuffer, "glBindFramebuffer");
  load(gl.gen_framebuffers, "glGenFramebuffers");
  load(gl.delete_framebuffers, "glDeleteFramebuffers");
  load(gl.framebuffer_texture_2d, "glFramebufferTexture2D");
  load(gl.framebuffer_renderbuffer, "glFramebufferRenderbuffer");
  load(gl.check_framebuffer_status, "glCheckFramebufferStatus");
  load(gl.gen_renderbuffers, "glGenRenderbuffers");
  load(gl.delete_renderbuffers, "glDeleteRenderbuffers");
  load(gl.bind_renderbuffer, "glBindRenderbuffer");
  load(gl.renderbuffer_storage, "glRenderbufferStorage");
  load(gl.gen_textures, "glGenTextures");
  load(gl.delete_textures, "glDeleteTextures");
  load(gl.bind_texture, "glBindTexture");
  load(gl.tex_image_2d, "glTexImage2D");
  load(gl.tex_parameter_i, "glTexParameteri");
  load(gl.viewport, "glViewport");
  load(gl.scissor, "glScissor");
  load(gl.enable, "glEnable");
  load(gl.disable, "glDisable");
  load(gl.clear_color, "glClearColor");
  load(gl.clear, "glClear");
  load(gl.pixel_store_i, "glPixelStorei");
  load(gl.read_pixels, "glReadPixels");
  load(gl.get_integer_v, "glGetIntegerv");
  return gl;
}

}  // namespace oct::app
