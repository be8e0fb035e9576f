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
  std::set<GLuint> failedCompiles;
  std::set<GLuint> failedLinks;
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
  bool enterOrError(const std::string& function) {
    if (!enter(function)) return false;
    const std::lock_guard lock(mutex);
    errors.push_back(failures.at(function).second);
    return true;
  }

  GLuint made(const std::string& kind, GLuint name) {
    const std::lock_guard lock(mutex);
    if (name != 0) objects.emplace(gl::currentContext(), kind, name);
    return name;
  }
  void deleted(const std::string& kind, GLuint name) {
    const std::lock_guard lock(mutex);
    objects.erase({gl::currentContext(), kind, name});
  }

  void answer(GLenum query, GLint* value) const {
    const auto answer = answers.find(query);
    if (answer != answers.end()) *value = answer->second;
  }

  GLenum nextError() {
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
#define OCT_REPLACED(X)                                   \
  X(genBuffers, __glewGenBuffers)                         \
  X(deleteBuffers, __glewDeleteBuffers)                   \
  X(bufferData, __glewBufferData)                         \
  X(mapBuffer, __glewMapBuffer)                           \
  X(unmapBuffer, __glewUnmapBuffer)                       \
  X(texImage3D, __glewTexImage3D)                         \
  X(texSubImage3D, __glewTexSubImage3D)                   \
  X(genVertexArrays, __glewGenVertexArrays)               \
  X(deleteVertexArrays, __glewDeleteVertexArrays)         \
  X(genFramebuffers, __glewGenFramebuffers)               \
  X(deleteFramebuffers, __glewDeleteFramebuffers)         \
  X(genRenderbuffers, __glewGenRenderbuffers)             \
  X(deleteRenderbuffers, __glewDeleteRenderbuffers)       \
  X(renderbufferStorage, __glewRenderbufferStorage)       \
  X(framebufferTexture2D, __glewFramebufferTexture2D)     \
  X(checkFramebufferStatus, __glewCheckFramebufferStatus) \
  X(createShader, __glewCreateShader)                     \
  X(deleteShader, __glewDeleteShader)                     \
  X(compileShader, __glewCompileShader)                   \
  X(getShaderiv, __glewGetShaderiv)                       \
  X(createProgram, __glewCreateProgram)                   \
  X(deleteProgram, __glewDeleteProgram)                   \
  X(linkProgram, __glewLinkProgram)                       \
  X(getProgramiv, __glewGetProgramiv)                     \
  X(programBinary, __glewProgramBinary)                   \
  X(getProgramBinary, __glewGetProgramBinary)

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

#define OCT_NAMES(Kinds, kind)                                          \
  void GLAPIENTRY gen##Kinds(GLsizei n, GLuint* names) {                \
    generate("glGen" #Kinds, kind, n, names, original.gen##Kinds);      \
  }                                                                     \
  void GLAPIENTRY delete##Kinds(GLsizei n, const GLuint* names) {       \
    destroy("glDelete" #Kinds, kind, n, names, original.delete##Kinds); \
  }
OCT_NAMES(Buffers, "buffer")
OCT_NAMES(VertexArrays, "vertex array")
OCT_NAMES(Framebuffers, "framebuffer")
OCT_NAMES(Renderbuffers, "renderbuffer")
#undef OCT_NAMES

void GLAPIENTRY bufferData(GLenum target, GLsizeiptr size, const void* data, GLenum usage) {
  if (!spy->enterOrError("glBufferData")) original.bufferData(target, size, data, usage);
}
void* GLAPIENTRY mapBuffer(GLenum target, GLenum access) {
  return spy->enter("glMapBuffer") ? nullptr : original.mapBuffer(target, access);
}
GLboolean GLAPIENTRY unmapBuffer(GLenum target) {
  const bool lost = spy->enter("glUnmapBuffer");
  const GLboolean intact = original.unmapBuffer(target);
  return lost ? GL_FALSE : intact;
}
void GLAPIENTRY texImage3D(GLenum target, GLint level, GLint internal, GLsizei width, GLsizei height,
                           GLsizei depth, GLint border, GLenum format, GLenum type, const void* pixels) {
  if (target == GL_PROXY_TEXTURE_3D) {
    // A refused proxy has no extent; so has one that is asked for without.
    if (spy->enter("3-D proxy")) width = 0;
  } else if (spy->enterOrError("glTexImage3D")) {
    return;
  }
  original.texImage3D(target, level, internal, width, height, depth, border, format, type, pixels);
}
void GLAPIENTRY texSubImage3D(GLenum target, GLint level, GLint x, GLint y, GLint z, GLsizei width,
                              GLsizei height, GLsizei depth, GLenum format, GLenum type, const void* pixels) {
  if (spy->enterOrError("glTexSubImage3D")) return;
  original.texSubImage3D(target, level, x, y, z, width, height, depth, format, type, pixels);
}
void GLAPIENTRY renderbufferStorage(GLenum target, GLenum format, GLsizei width, GLsizei height) {
  if (!spy->enterOrError("glRenderbufferStorage"))
    original.renderbufferStorage(target, format, width, height);
}
void GLAPIENTRY framebufferTexture2D(GLenum target, GLenum attachment, GLenum kind, GLuint name,
                                     GLint level) {
  if (!spy->enterOrError("glFramebufferTexture2D")) {
    original.framebufferTexture2D(target, attachment, kind, name, level);
  }
}
GLenum GLAPIENTRY checkFramebufferStatus(GLenum target) {
  if (spy->enter("glCheckFramebufferStatus")) return spy->failures.at("glCheckFramebufferStatus").second;
  return original.checkFramebufferStatus(target);
}
GLuint GLAPIENTRY createShader(GLenum stage) {
  return spy->enter("glCreateShader") ? 0 : spy->made("shader", original.createShader(stage));
}
void GLAPIENTRY deleteShader(GLuint name) {
  destroy("glDeleteShader", "shader", 1, &name,
          [](GLsizei, const GLuint* names) { original.deleteShader(*names); });
}
void GLAPIENTRY compileShader(GLuint name) {
  if (spy->enter("glCompileShader")) spy->failedCompiles.insert(name);
  original.compileShader(name);
}
void GLAPIENTRY getShaderiv(GLuint name, GLenum query, GLint* value) {
  original.getShaderiv(name, query, value);
  if (query == GL_COMPILE_STATUS && spy->failedCompiles.contains(name)) *value = GL_FALSE;
}
GLuint GLAPIENTRY createProgram() {
  return spy->enter("glCreateProgram") ? 0 : spy->made("program", original.createProgram());
}
void GLAPIENTRY deleteProgram(GLuint name) {
  destroy("glDeleteProgram", "program", 1, &name,
          [](GLsizei, const GLuint* names) { original.deleteProgram(*names); });
}
void GLAPIENTRY linkProgram(GLuint name) {
  if (spy->enter("glLinkProgram")) spy->failedLinks.insert(name);
  original.linkProgram(name);
}
void GLAPIENTRY getProgramiv(GLuint name, GLenum query, GLint* value) {
  original.getProgramiv(name, query, value);
  if (query == GL_LINK_STATUS) {
    ++spy->calls["glGetProgramiv(GL_LINK_STATUS)"];
    if (spy->failedLinks.contains(name)) *value = GL_FALSE;
  }
  spy->answer(query, value);
}
void GLAPIENTRY programBinary(GLuint name, GLenum format, const void* bytes, GLsizei length) {
  if (!spy->enterOrError("glProgramBinary")) original.programBinary(name, format, bytes, length);
}
void GLAPIENTRY getProgramBinary(GLuint name, GLsizei size, GLsizei* length, GLenum* format, void* bytes) {
  if (!spy->enterOrError("glGetProgramBinary")) original.getProgramBinary(name, size, length, format, bytes);
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

void GlSpy::failNext(const std::string& function, int times, GLenum error) {
  const std::lock_guard lock(state_->mutex);
  state_->failures[function] = {times, error};
}

void GlSpy::answer(GLenum integerQuery, GLint value) {
  state_->answers[integerQuery] = value;
}
void GlSpy::queueError(GLenum error) {
  state_->errors.push_back(error);
}
std::size_t GlSpy::liveObjects() const {
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
  if (spy && spy->enterOrError("glTexImage1D")) return;
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
    if (spy->enterOrError("glTexImage2D")) return;
  }
  __real_glTexImage2D(target, level, internal, width, height, border, format, type, pixels);
}

void GLAPIENTRY __real_glTexSubImage2D(GLenum, GLint, GLint, GLint, GLsizei, GLsizei, GLenum, GLenum,
                                       const void*);
void GLAPIENTRY __wrap_glTexSubImage2D(GLenum target, GLint level, GLint x, GLint y, GLsizei width,
                                       GLsizei height, GLenum format, GLenum type, const void* pixels) {
  if (spy && spy->enterOrError("glTexSubImage2D")) return;
  __real_glTexSubImage2D(target, level, x, y, width, height, format, type, pixels);
}

GLenum GLAPIENTRY __real_glGetError(void);
GLenum GLAPIENTRY __wrap_glGetError(void) {
  const GLenum error = spy ? spy->nextError() : GL_NO_ERROR;
  return error != GL_NO_ERROR ? error : __real_glGetError();
}

void GLAPIENTRY __real_glGetIntegerv(GLenum query, GLint* value);
void GLAPIENTRY __wrap_glGetIntegerv(GLenum query, GLint* value) {
  __real_glGetIntegerv(query, value);
  if (spy) spy->answer(query, value);
}

}  // extern "C"
