#include "support/gl_spy.h"

#include <algorithm>
#include <deque>
#include <mutex>
#include <tuple>
#include <utility>

#include "gl/context/current_context.h"

namespace oct::test {

struct GlSpy::State {
  std::map<std::string, int> calls;
  std::map<std::string, std::pair<int, GLenum>> failures;
  std::map<GLenum, GLint> answers;
  std::deque<GLenum> errors;
  std::set<std::tuple<void*, std::string, GLuint>> objects;  // with their contexts
  std::set<GLuint> failed_compiles;
  std::set<GLuint> failed_links;
  std::mutex mutex;  // guards calls, failures, errors and objects

  // Counts a call; true when it is to fail.
  bool enter(const std::string& function) {
    const std::lock_guard lock(mutex);
    ++calls[function];
    const auto failure = failures.find(function);
    if (failure == failures.end() || failure->second.first == 0) return false;
    --failure->second.first;
    return true;
  }

  // The same for a call whose failure leaves an error.
  bool enter_or_error(const std::string& function) {
    if (!enter(function)) return false;
    const std::lock_guard lock(mutex);
    errors.push_back(failures.at(function).second);
    return true;
  }

  GLuint made(const std::string& kind, GLuint name) {
    const std::lock_guard lock(mutex);
    if (name != 0) objects.emplace(gl::current_context(), kind, name);
    return name;
  }
  void deleted(const std::string& kind, GLuint name) {
    const std::lock_guard lock(mutex);
    objects.erase({gl::current_context(), kind, name});
  }

  void answer(GLenum query, GLint* value) const {
    const auto answer = answers.find(query);
    if (answer != answers.end()) *value = answer->second;
  }

  GLenum next_error() {
    const std::lock_guard lock(mutex);
    if (errors.empty()) return GL_NO_ERROR;
    const GLenum error = errors.front();
    errors.pop_front();
    return error;
  }
};

namespace {

GlSpy::State* spy = nullptr;

// The pointers that a spy replaces: our function, GLEW's pointer.
#define OCT_REPLACED(X)                                     \
  X(gen_buffers, __glewGenBuffers)                          \
  X(delete_buffers, __glewDeleteBuffers)                    \
  X(buffer_data, __glewBufferData)                          \
  X(map_buffer, __glewMapBuffer)                            \
  X(unmap_buffer, __glewUnmapBuffer)                        \
  X(tex_image_3d, __glewTexImage3D)                         \
  X(tex_sub_image_3d, __glewTexSubImage3D)                  \
  X(gen_vertex_arrays, __glewGenVertexArrays)               \
  X(delete_vertex_arrays, __glewDeleteVertexArrays)         \
  X(gen_framebuffers, __glewGenFramebuffers)                \
  X(delete_framebuffers, __glewDeleteFramebuffers)          \
  X(gen_renderbuffers, __glewGenRenderbuffers)              \
  X(delete_renderbuffers, __glewDeleteRenderbuffers)        \
  X(renderbuffer_storage, __glewRenderbufferStorage)        \
  X(framebuffer_texture_2d, __glewFramebufferTexture2D)     \
  X(check_framebuffer_status, __glewCheckFramebufferStatus) \
  X(create_shader, __glewCreateShader)                      \
  X(delete_shader, __glewDeleteShader)                      \
  X(compile_shader, __glewCompileShader)                    \
  X(get_shaderiv, __glewGetShaderiv)                        \
  X(create_program, __glewCreateProgram)                    \
  X(delete_program, __glewDeleteProgram)                    \
  X(link_program, __glewLinkProgram)                        \
  X(get_programiv, __glewGetProgramiv)                      \
  X(program_binary, __glewProgramBinary)                    \
  X(get_program_binary, __glewGetProgramBinary)

// GLEW's pointers while they are replaced.
struct Originals {
#define OCT_MEMBER(member, pointer) decltype(pointer) member;
  OCT_REPLACED(OCT_MEMBER)
#undef OCT_MEMBER
};
Originals original{};

template <class Generate>
void generate(const char* function, const char* kind, GLsizei count, GLuint* names, Generate call) {
  if (spy->enter(function)) {
    std::fill_n(names, count, 0U);
    return;
  }
  call(count, names);
  for (GLsizei i = 0; i < count; ++i) spy->made(kind, names[i]);
}

template <class Delete>
void destroy(const char* function, const char* kind, GLsizei count, const GLuint* names, Delete call) {
  spy->enter(function);
  for (GLsizei i = 0; i < count; ++i) spy->deleted(kind, names[i]);
  call(count, names);
}

#define OCT_NAMES(kinds, Kinds, kind)                                    \
  void GLAPIENTRY gen_##kinds(GLsizei n, GLuint* names) {                \
    generate("glGen" #Kinds, kind, n, names, original.gen_##kinds);      \
  }                                                                      \
  void GLAPIENTRY delete_##kinds(GLsizei n, const GLuint* names) {       \
    destroy("glDelete" #Kinds, kind, n, names, original.delete_##kinds); \
  }
OCT_NAMES(buffers, Buffers, "buffer")
OCT_NAMES(vertex_arrays, VertexArrays, "vertex array")
OCT_NAMES(framebuffers, Framebuffers, "framebuffer")
OCT_NAMES(renderbuffers, Renderbuffers, "renderbuffer")
#undef OCT_NAMES

void GLAPIENTRY buffer_data(GLenum target, GLsizeiptr size, const void* data, GLenum usage) {
  if (!spy->enter_or_error("glBufferData")) original.buffer_data(target, size, data, usage);
}
void* GLAPIENTRY map_buffer(GLenum target, GLenum access) {
  return spy->enter("glMapBuffer") ? nullptr : original.map_buffer(target, access);
}
GLboolean GLAPIENTRY unmap_buffer(GLenum target) {
  const bool lost = spy->enter("glUnmapBuffer");
  const GLboolean intact = original.unmap_buffer(target);
  return lost ? GL_FALSE : intact;
}
void GLAPIENTRY tex_image_3d(GLenum target, GLint level, GLint internal, GLsizei width, GLsizei height,
                             GLsizei depth, GLint border, GLenum format, GLenum type, const void* pixels) {
  if (target == GL_PROXY_TEXTURE_3D) {
    // A refused proxy has no extent; so has one that is asked for without.
    if (spy->enter("3-D proxy")) width = 0;
  } else if (spy->enter_or_error("glTexImage3D")) {
    return;
  }
  original.tex_image_3d(target, level, internal, width, height, depth, border, format, type, pixels);
}
void GLAPIENTRY tex_sub_image_3d(GLenum target, GLint level, GLint x, GLint y, GLint z, GLsizei width,
                                 GLsizei height, GLsizei depth, GLenum format, GLenum type,
                                 const void* pixels) {
  if (spy->enter_or_error("glTexSubImage3D")) return;
  original.tex_sub_image_3d(target, level, x, y, z, width, height, depth, format, type, pixels);
}
void GLAPIENTRY renderbuffer_storage(GLenum target, GLenum format, GLsizei width, GLsizei height) {
  if (!spy->enter_or_error("glRenderbufferStorage"))
    original.renderbuffer_storage(target, format, width, height);
}
void GLAPIENTRY framebuffer_texture_2d(GLenum target, GLenum attachment, GLenum kind, GLuint name,
                                       GLint level) {
  if (!spy->enter_or_error("glFramebufferTexture2D")) {
    original.framebuffer_texture_2d(target, attachment, kind, name, level);
  }
}
GLenum GLAPIENTRY check_framebuffer_status(GLenum target) {
  if (spy->enter("glCheckFramebufferStatus")) return spy->failures.at("glCheckFramebufferStatus").second;
  return original.check_framebuffer_status(target);
}
GLuint GLAPIENTRY create_shader(GLenum stage) {
  return spy->enter("glCreateShader") ? 0 : spy->made("shader", original.create_shader(stage));
}
void GLAPIENTRY delete_shader(GLuint name) {
  destroy("glDeleteShader", "shader", 1, &name,
          [](GLsizei, const GLuint* names) { original.delete_shader(*names); });
}
void GLAPIENTRY compile_shader(GLuint name) {
  if (spy->enter("glCompileShader")) spy->failed_compiles.insert(name);
  original.compile_shader(name);
}
void GLAPIENTRY get_shaderiv(GLuint name, GLenum query, GLint* value) {
  original.get_shaderiv(name, query, value);
  if (query == GL_COMPILE_STATUS && spy->failed_compiles.contains(name)) *value = GL_FALSE;
}
GLuint GLAPIENTRY create_program() {
  return spy->enter("glCreateProgram") ? 0 : spy->made("program", original.create_program());
}
void GLAPIENTRY delete_program(GLuint name) {
  destroy("glDeleteProgram", "program", 1, &name,
          [](GLsizei, const GLuint* names) { original.delete_program(*names); });
}
void GLAPIENTRY link_program(GLuint name) {
  if (spy->enter("glLinkProgram")) spy->failed_links.insert(name);
  original.link_program(name);
}
void GLAPIENTRY get_programiv(GLuint name, GLenum query, GLint* value) {
  original.get_programiv(name, query, value);
  if (query == GL_LINK_STATUS) {
    ++spy->calls["glGetProgramiv(GL_LINK_STATUS)"];
    if (spy->failed_links.contains(name)) *value = GL_FALSE;
  }
  spy->answer(query, value);
}
void GLAPIENTRY program_binary(GLuint name, GLenum format, const void* bytes, GLsizei length) {
  if (!spy->enter_or_error("glProgramBinary")) original.program_binary(name, format, bytes, length);
}
void GLAPIENTRY get_program_binary(GLuint name, GLsizei size, GLsizei* length, GLenum* format, void* bytes) {
  if (!spy->enter_or_error("glGetProgramBinary"))
    original.get_program_binary(name, size, length, format, bytes);
}

}  // namespace

GlSpy::GlSpy() : state_(new State) {
  spy = state_;
#define OCT_REPLACE(member, pointer) original.member = pointer, pointer = member;
  OCT_REPLACED(OCT_REPLACE)
#undef OCT_REPLACE
}

GlSpy::~GlSpy() {
#define OCT_RESTORE(member, pointer) pointer = original.member;
  OCT_REPLACED(OCT_RESTORE)
#undef OCT_RESTORE
  spy = nullptr;
  delete state_;
}

int GlSpy::calls(const std::string& function) const {
  const std::lock_guard lock(state_->mutex);
  const auto entry = state_->calls.find(function);
  return entry == state_->calls.end() ? 0 : entry->second;
}

void GlSpy::fail_next(const std::string& function, int times, GLenum error) {
  const std::lock_guard lock(state_->mutex);
  state_->failures[function] = {times, error};
}

void GlSpy::answer(GLenum integer_query, GLint value) {
  state_->answers[integer_query] = value;
}
void GlSpy::queue_error(GLenum error) {
  state_->errors.push_back(error);
}
std::size_t GlSpy::live_objects() const {
  const std::lock_guard lock(state_->mutex);
  return state_->objects.size();
}

}  // namespace oct::test

// The OpenGL 1.1 functions that the linker routes here.
extern "C" {

using oct::test::spy;

void GLAPIENTRY __real_glGenTextures(GLsizei n, GLuint* names);
void GLAPIENTRY __wrap_glGenTextures(GLsizei n, GLuint* names) {
  if (!spy) return __real_glGenTextures(n, names);
  oct::test::generate("glGenTextures", "texture", n, names, __real_glGenTextures);
}

void GLAPIENTRY __real_glDeleteTextures(GLsizei n, const GLuint* names);
void GLAPIENTRY __wrap_glDeleteTextures(GLsizei n, const GLuint* names) {
  if (!spy) return __real_glDeleteTextures(n, names);
  oct::test::destroy("glDeleteTextures", "texture", n, names, __real_glDeleteTextures);
}

void GLAPIENTRY __real_glTexImage1D(GLenum, GLint, GLint, GLsizei, GLint, GLenum, GLenum, const void*);
void GLAPIENTRY __wrap_glTexImage1D(GLenum target, GLint level, GLint internal, GLsizei width, GLint border,
                                    GLenum format, GLenum type, const void* pixels) {
  if (spy && spy->enter_or_error("glTexImage1D")) return;
  __real_glTexImage1D(target, level, internal, width, border, format, type, pixels);
}

void GLAPIENTRY __real_glTexImage2D(GLenum, GLint, GLint, GLsizei, GLsizei, GLint, GLenum, GLenum,
                                    const void*);
void GLAPIENTRY __wrap_glTexImage2D(GLenum target, GLint level, GLint internal, GLsizei width, GLsizei height,
                                    GLint border, GLenum format, GLenum type, const void* pixels) {
  if (spy && target == GL_PROXY_TEXTURE_2D) {
    // A refused proxy has no extent; so has one that is asked for without.
    if (spy->enter(internal == GL_R32F ? "R32F proxy" : "R16F proxy")) width = 0;
  } else if (spy) {
    if (internal == GL_R16F) ++spy->calls["R16F texture"];
    if (spy->enter_or_error("glTexImage2D")) return;
  }
  __real_glTexImage2D(target, level, internal, width, height, border, format, type, pixels);
}

void GLAPIENTRY __real_glTexSubImage2D(GLenum, GLint, GLint, GLint, GLsizei, GLsizei, GLenum, GLenum,
                                       const void*);
void GLAPIENTRY __wrap_glTexSubImage2D(GLenum target, GLint level, GLint x, GLint y, GLsizei width,
                                       GLsizei height, GLenum format, GLenum type, const void* pixels) {
  if (spy && spy->enter_or_error("glTexSubImage2D")) return;
  __real_glTexSubImage2D(target, level, x, y, width, height, format, type, pixels);
}

GLenum GLAPIENTRY __real_glGetError(void);
GLenum GLAPIENTRY __wrap_glGetError(void) {
  const GLenum error = spy ? spy->next_error() : GL_NO_ERROR;
  return error != GL_NO_ERROR ? error : __real_glGetError();
}

void GLAPIENTRY __real_glGetIntegerv(GLenum query, GLint* value);
void GLAPIENTRY __wrap_glGetIntegerv(GLenum query, GLint* value) {
  __real_glGetIntegerv(query, value);
  if (spy) spy->answer(query, value);
}

}  // extern "C"
