#include "support/gl_spy.h"

#include <algorithm>
#include <deque>
#include <mutex>
#include <tuple>
#include <type_traits>
#include <utility>

#include "gl/context/current_context.h"

namespace oct::test {

struct GlSpy::State {
  std::map<std::string, int> calls;
  std::map<std::string, std::pair<int, GLenum>> failures;
  std::map<GLenum, GLint> answers;
  std::map<GLenum, std::string> texts;
  std::deque<GLenum> errors;
  std::set<std::tuple<void*, std::string, GLuint>> objects;  // with their contexts
  std::mutex mutex;                                          // guards all but the answers

  // Counts a call; true when it is to fail.
  bool enter(const std::string& function) {
    const std::lock_guard lock(mutex);
    ++calls[function];
    const auto failure = failures.find(function);
    if (failure == failures.end() || failure->second.first == 0) return false;
    --failure->second.first;
    return true;
  }

  void made(const std::string& kind, GLuint name) {
    const std::lock_guard lock(mutex);
    if (name != 0) objects.emplace(gl::current_context(), kind, name);
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

// What a call without result does when it fails: no names are made, and of the others an error is left.
void fail(const char*, GLsizei count, GLuint* names) {
  std::fill_n(names, count, 0U);
}
template <class... Args>
void fail(const char* function, const Args&...) {
  const std::lock_guard lock(spy->mutex);
  spy->errors.push_back(spy->failures.at(function).second);
}

// Takes the census; the kind of the objects follows "glGen", "glCreate" and "glDelete". What else is done
// with the name of a shader or program has no kind that was ever made.
void take_note(const char* function, GLsizei count, GLuint* names) {
  for (GLsizei i = 0; i < count; ++i) spy->made(function + 5, names[i]);
}
void take_note(const char* function, GLsizei count, const GLuint* names) {
  for (GLsizei i = 0; i < count; ++i) spy->deleted(function + 8, names[i]);
}
void take_note(const char* function, GLuint name) {
  spy->deleted(function + 8, name);
}
template <class... Args>
void take_note(const char*, const Args&...) {}

template <class Function, class... Args>
auto watched(const char* function, Function call, Args... args) {
  using Result = decltype(call(args...));
  const bool fails = spy && spy->enter(function);
  if constexpr (std::is_void_v<Result>) {
    if (fails) return fail(function, args...);
    call(args...);
    if (spy) take_note(function, args...);
  } else {
    const Result result = fails ? Result{} : call(args...);
    if constexpr (std::is_same_v<Result, GLuint>) spy->made(function + 8, result);
    return result;
  }
}

// GLEW's pointer while it is replaced.
template <auto* pointer>
std::remove_pointer_t<decltype(pointer)> original;

GLboolean GLAPIENTRY unmap_buffer(GLenum target) {
  const bool lost = spy->enter("glUnmapBuffer");
  const GLboolean intact = original<&__glewUnmapBuffer>(target);
  return lost ? GL_FALSE : intact;
}
void GLAPIENTRY tex_image_3d(GLenum target, GLint level, GLint internal, GLsizei width, GLsizei height,
                             GLsizei depth, GLint border, GLenum format, GLenum type, const void* pixels) {
  const bool proxy = target == GL_PROXY_TEXTURE_3D;
  // A refused proxy has no extent; so has one that is asked for without.
  if (proxy && spy->enter("3-D proxy")) width = 0;
  watched(proxy ? "" : "glTexImage3D", original<&__glewTexImage3D>, target, level, internal, width, height,
          depth, border, format, type, pixels);
}
GLenum GLAPIENTRY check_framebuffer_status(GLenum target) {
  if (spy->enter("glCheckFramebufferStatus")) return spy->failures.at("glCheckFramebufferStatus").second;
  return original<&__glewCheckFramebufferStatus>(target);
}
void GLAPIENTRY get_programiv(GLuint name, GLenum query, GLint* value) {
  original<&__glewGetProgramiv>(name, query, value);
  if (query == GL_LINK_STATUS) spy->enter("glGetProgramiv(GL_LINK_STATUS)");
  spy->answer(query, value);
}

template <std::size_t size>
struct Name {
  char text[size];
  consteval Name(const char (&name)[size]) { std::copy_n(name, size, text); }
};

template <Name function, auto* pointer, class Result, class... Args>
Result GLAPIENTRY watched_pointer(Args... args) {
  return watched(function.text, original<pointer>, args...);
}

// Puts our function into the pointer, or the original back when the spy is gone and nobody has loaded anew.
template <auto* pointer>
void replace(std::remove_pointer_t<decltype(pointer)> ours) {
  if (spy) original<pointer> = std::exchange(*pointer, ours);
  if (!spy && *pointer == ours) *pointer = original<pointer>;
}
template <Name function, auto* pointer>
void replace() {
  replace<pointer>(watched_pointer<function, pointer>);
}

void replace_all() {
  replace<"glGenBuffers", &__glewGenBuffers>();
  replace<"glDeleteBuffers", &__glewDeleteBuffers>();
  replace<"glGenVertexArrays", &__glewGenVertexArrays>();
  replace<"glDeleteVertexArrays", &__glewDeleteVertexArrays>();
  replace<"glGenFramebuffers", &__glewGenFramebuffers>();
  replace<"glDeleteFramebuffers", &__glewDeleteFramebuffers>();
  replace<"glGenRenderbuffers", &__glewGenRenderbuffers>();
  replace<"glDeleteRenderbuffers", &__glewDeleteRenderbuffers>();
  replace<"glBufferData", &__glewBufferData>();
  replace<"glMapBuffer", &__glewMapBuffer>();
  replace<&__glewUnmapBuffer>(unmap_buffer);
  replace<&__glewTexImage3D>(tex_image_3d);
  replace<"glTexSubImage3D", &__glewTexSubImage3D>();
  replace<"glRenderbufferStorage", &__glewRenderbufferStorage>();
  replace<"glFramebufferTexture2D", &__glewFramebufferTexture2D>();
  replace<&__glewCheckFramebufferStatus>(check_framebuffer_status);
  replace<"glCreateShader", &__glewCreateShader>();
  replace<"glDeleteShader", &__glewDeleteShader>();
  replace<"glCompileShader", &__glewCompileShader>();
  replace<"glCreateProgram", &__glewCreateProgram>();
  replace<"glDeleteProgram", &__glewDeleteProgram>();
  replace<"glLinkProgram", &__glewLinkProgram>();
  replace<&__glewGetProgramiv>(get_programiv);
  replace<"glProgramBinary", &__glewProgramBinary>();
  replace<"glGetProgramBinary", &__glewGetProgramBinary>();
}

}  // namespace

GlSpy::GlSpy() : state_(new State) {
  spy = state_;
  replace_all();
}

GlSpy::~GlSpy() {
  spy = nullptr;
  replace_all();
  delete state_;
}

int GlSpy::calls(const std::string& function) const {
  const std::lock_guard lock(state_->mutex);
  return state_->calls[function];
}

void GlSpy::fail_next(const std::string& function, int times, GLenum error) {
  const std::lock_guard lock(state_->mutex);
  state_->failures[function] = {times, error};
}

void GlSpy::answer(GLenum integer_query, GLint value) {
  state_->answers[integer_query] = value;
}
void GlSpy::answer(GLenum string_query, const std::string& text) {
  state_->texts[string_query] = text;
}
void GlSpy::queue_error(GLenum error) {
  const std::lock_guard lock(state_->mutex);
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
using oct::test::watched;

decltype(glGenTextures) __real_glGenTextures;
void GLAPIENTRY __wrap_glGenTextures(GLsizei n, GLuint* names) {
  watched("glGenTextures", __real_glGenTextures, n, names);
}

decltype(glDeleteTextures) __real_glDeleteTextures;
void GLAPIENTRY __wrap_glDeleteTextures(GLsizei n, const GLuint* names) {
  watched("glDeleteTextures", __real_glDeleteTextures, n, names);
}

decltype(glTexImage1D) __real_glTexImage1D;
void GLAPIENTRY __wrap_glTexImage1D(GLenum target, GLint level, GLint internal, GLsizei width, GLint border,
                                    GLenum format, GLenum type, const void* pixels) {
  watched("glTexImage1D", __real_glTexImage1D, target, level, internal, width, border, format, type, pixels);
}

decltype(glTexImage2D) __real_glTexImage2D;
void GLAPIENTRY __wrap_glTexImage2D(GLenum target, GLint level, GLint internal, GLsizei width, GLsizei height,
                                    GLint border, GLenum format, GLenum type, const void* pixels) {
  const bool proxy = target == GL_PROXY_TEXTURE_2D;
  const std::string kind = internal == GL_R32F ? "R32F" : internal == GL_R16F ? "R16F" : "other";
  // A refused proxy has no extent; so has one that is asked for without.
  if (spy && spy->enter(kind + (proxy ? " proxy" : " texture"))) width = 0;
  watched(proxy ? "" : "glTexImage2D", __real_glTexImage2D, target, level, internal, width, height, border,
          format, type, pixels);
}

decltype(glTexSubImage2D) __real_glTexSubImage2D;
void GLAPIENTRY __wrap_glTexSubImage2D(GLenum target, GLint level, GLint x, GLint y, GLsizei width,
                                       GLsizei height, GLenum format, GLenum type, const void* pixels) {
  watched("glTexSubImage2D", __real_glTexSubImage2D, target, level, x, y, width, height, format, type,
          pixels);
}

decltype(glGetError) __real_glGetError;
GLenum GLAPIENTRY __wrap_glGetError(void) {
  const GLenum error = spy ? spy->next_error() : GL_NO_ERROR;
  return error != GL_NO_ERROR ? error : __real_glGetError();
}

decltype(glGetString) __real_glGetString;
const GLubyte* GLAPIENTRY __wrap_glGetString(GLenum query) {
  const GLubyte* const text = __real_glGetString(query);
  if (!spy || !text || !spy->texts.contains(query)) return text;
  return reinterpret_cast<const GLubyte*>(spy->texts.at(query).c_str());
}

decltype(glGetIntegerv) __real_glGetIntegerv;
void GLAPIENTRY __wrap_glGetIntegerv(GLenum query, GLint* value) {
  __real_glGetIntegerv(query, value);
  if (spy) spy->answer(query, value);
}

}  // extern "C"
