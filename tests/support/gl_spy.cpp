#include "support/gl_spy.h"

#include <algorithm>
#include <deque>
#include <mutex>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <utility>

#include "gl/context/current_context.h"

namespace oct::test {

struct GlSpy::State {
  std::map<std::string, int> calls;
  int total = 0;
  struct Failure {
    int after;
    int times;
    GLenum error;
  };
  std::map<std::string, Failure> failures;
  std::map<std::string, std::function<void()>> actions;
  std::map<GLenum, GLint> answers;
  std::map<GLenum, std::string> texts;
  std::deque<GLenum> errors;
  std::set<std::tuple<void*, std::string, GLuint>> objects;  // with their contexts
  std::mutex mutex;

  // Counts a call; true when it is to fail.
  bool enter(const std::string& function) {
    std::unique_lock lock(mutex);
    ++calls[function];
    total += function.starts_with("gl");
    if (const auto action = actions.extract(function)) {
      lock.unlock();
      action.mapped()();
      lock.lock();
    }
    const auto failure = failures.find(function);
    if (failure == failures.end() || failure->second.times == 0) return false;
    if (failure->second.after > 0) return --failure->second.after, false;
    --failure->second.times;
    return true;
  }

  void count() {
    const std::lock_guard lock(mutex);
    ++total;
  }

  GLenum error_of(const std::string& function) {
    const std::lock_guard lock(mutex);
    return failures.at(function).error;
  }

  void made(const std::string& kind, GLuint name) {
    const std::lock_guard lock(mutex);
    if (name != 0) objects.emplace(gl::current_context(), kind, name);
  }
  void deleted(const std::string& kind, GLuint name) {
    const std::lock_guard lock(mutex);
    objects.erase({gl::current_context(), kind, name});
  }

  void answer(GLenum query, GLint* value) {
    const std::lock_guard lock(mutex);
    const auto answer = answers.find(query);
    if (answer != answers.end()) *value = answer->second;
  }

  const char* text(GLenum query) {
    const std::lock_guard lock(mutex);
    const auto found = texts.find(query);
    return found != texts.end() ? found->second.c_str() : nullptr;
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
  const GLenum error = spy->error_of(function);
  const std::lock_guard lock(spy->mutex);
  spy->errors.push_back(error);
}

// Takes the census; the kind of the objects follows "glGen", "glCreate" and "glDelete".
void take_note(const char* function, GLsizei count, GLuint* names) {
  for (GLsizei i = 0; i < count; ++i) spy->made(function + 5, names[i]);
}
void take_note(const char* function, GLsizei count, const GLuint* names) {
  for (GLsizei i = 0; i < count; ++i) spy->deleted(function + 8, names[i]);
}
void take_note(const char* function, GLuint name) {
  if (std::string_view(function).starts_with("glDelete")) spy->deleted(function + 8, name);
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
  if (spy->enter("glCheckFramebufferStatus")) return spy->error_of("glCheckFramebufferStatus");
  return original<&__glewCheckFramebufferStatus>(target);
}
GLenum GLAPIENTRY client_wait_sync(GLsync sync, GLbitfield flags, GLuint64 nanoseconds) {
  if (spy->enter("glClientWaitSync")) return GL_WAIT_FAILED;
  return original<&__glewClientWaitSync>(sync, flags, nanoseconds);
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

template <auto* pointer, class Result, class... Args>
Result GLAPIENTRY counted_pointer(Args... args) {
  spy->count();
  return original<pointer>(args...);
}

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
#define OCT_WATCHED(name) replace<"gl" #name, &__glew##name>()
  OCT_WATCHED(GenBuffers), OCT_WATCHED(DeleteBuffers), OCT_WATCHED(GenVertexArrays),
      OCT_WATCHED(DeleteVertexArrays), OCT_WATCHED(GenFramebuffers), OCT_WATCHED(DeleteFramebuffers),
      OCT_WATCHED(GenRenderbuffers), OCT_WATCHED(DeleteRenderbuffers), OCT_WATCHED(BufferData),
      OCT_WATCHED(TexSubImage3D), OCT_WATCHED(RenderbufferStorage), OCT_WATCHED(FramebufferTexture2D),
      OCT_WATCHED(CreateShader), OCT_WATCHED(DeleteShader), OCT_WATCHED(CompileShader),
      OCT_WATCHED(CreateProgram), OCT_WATCHED(DeleteProgram), OCT_WATCHED(LinkProgram),
      OCT_WATCHED(ProgramBinary), OCT_WATCHED(GetProgramBinary), OCT_WATCHED(ActiveTexture),
      OCT_WATCHED(AttachShader), OCT_WATCHED(BindBuffer), OCT_WATCHED(BindFramebuffer),
      OCT_WATCHED(BindRenderbuffer), OCT_WATCHED(BindSampler), OCT_WATCHED(BindVertexArray),
      OCT_WATCHED(BlendEquation), OCT_WATCHED(BlendFuncSeparate), OCT_WATCHED(BlitFramebuffer),
      OCT_WATCHED(DeleteSync), OCT_WATCHED(EnableVertexAttribArray), OCT_WATCHED(FenceSync),
      OCT_WATCHED(FramebufferRenderbuffer), OCT_WATCHED(MapBufferRange), OCT_WATCHED(ProgramParameteri),
      OCT_WATCHED(ShaderSource), OCT_WATCHED(Uniform1f), OCT_WATCHED(Uniform1fv), OCT_WATCHED(Uniform1i),
      OCT_WATCHED(Uniform2f), OCT_WATCHED(Uniform3f), OCT_WATCHED(Uniform3i), OCT_WATCHED(Uniform4f),
      OCT_WATCHED(Uniform4fv), OCT_WATCHED(UniformMatrix3fv), OCT_WATCHED(UniformMatrix4fv),
      OCT_WATCHED(UseProgram), OCT_WATCHED(VertexAttribPointer), OCT_WATCHED(PushDebugGroup),
      OCT_WATCHED(ObjectLabel), OCT_WATCHED(QueryCounter);
#undef OCT_WATCHED
#define OCT_COUNTED(name) replace<&__glew##name>(counted_pointer<&__glew##name>)
  OCT_COUNTED(BlendEquationSeparate), OCT_COUNTED(ClipControl), OCT_COUNTED(GetUniformLocation),
      OCT_COUNTED(GetVertexAttribiv), OCT_COUNTED(IsProgram), OCT_COUNTED(IsVertexArray);
#undef OCT_COUNTED
  replace<&__glewUnmapBuffer>(unmap_buffer);
  replace<&__glewTexImage3D>(tex_image_3d);
  replace<&__glewCheckFramebufferStatus>(check_framebuffer_status);
  replace<&__glewGetProgramiv>(get_programiv);
  replace<&__glewClientWaitSync>(client_wait_sync);
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

int GlSpy::total() const {
  const std::lock_guard lock(state_->mutex);
  return state_->total;
}

void GlSpy::fail_next(const std::string& function, int times, GLenum error, int after) {
  const std::lock_guard lock(state_->mutex);
  state_->failures[function] = {after, times, error};
}

void GlSpy::in_next(const std::string& function, std::function<void()> action) {
  const std::lock_guard lock(state_->mutex);
  state_->actions[function] = std::move(action);
}

std::map<std::string, int> GlSpy::all_calls() const {
  const std::lock_guard lock(state_->mutex);
  return state_->calls;
}

void GlSpy::forget_calls() {
  const std::lock_guard lock(state_->mutex);
  state_->calls.clear();
  state_->total = 0;
  state_->failures.clear();
}

void GlSpy::answer(GLenum integer_query, GLint value) {
  const std::lock_guard lock(state_->mutex);
  state_->answers[integer_query] = value;
}
void GlSpy::answer(GLenum string_query, const std::string& text) {
  const std::lock_guard lock(state_->mutex);
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

#define OCT_WATCH(function, parameters, ...)                          \
  decltype(function) __real_##function;                               \
  void GLAPIENTRY __wrap_##function parameters {                      \
    watched(#function, __real_##function __VA_OPT__(, ) __VA_ARGS__); \
  }

OCT_WATCH(glGenTextures, (GLsizei n, GLuint* names), n, names)
OCT_WATCH(glDeleteTextures, (GLsizei n, const GLuint* names), n, names)
OCT_WATCH(glTexImage1D,
          (GLenum target, GLint level, GLint internal, GLsizei width, GLint border, GLenum format,
           GLenum type, const void* pixels),
          target, level, internal, width, border, format, type, pixels)
OCT_WATCH(glTexSubImage2D,
          (GLenum target, GLint level, GLint x, GLint y, GLsizei width, GLsizei height, GLenum format,
           GLenum type, const void* pixels),
          target, level, x, y, width, height, format, type, pixels)
OCT_WATCH(glBindTexture, (GLenum target, GLuint texture), target, texture)
OCT_WATCH(glTexParameteri, (GLenum target, GLenum name, GLint value), target, name, value)
OCT_WATCH(glEnable, (GLenum capability), capability)
OCT_WATCH(glDisable, (GLenum capability), capability)
OCT_WATCH(glPixelStorei, (GLenum name, GLint value), name, value)
OCT_WATCH(glDepthFunc, (GLenum function), function)
OCT_WATCH(glDepthMask, (GLboolean mask), mask)
OCT_WATCH(glClearDepth, (GLclampd depth), depth)
OCT_WATCH(glPolygonOffset, (GLfloat factor, GLfloat units), factor, units)
OCT_WATCH(glColorMask, (GLboolean r, GLboolean g, GLboolean b, GLboolean a), r, g, b, a)
OCT_WATCH(glCullFace, (GLenum face), face)
OCT_WATCH(glFrontFace, (GLenum order), order)
OCT_WATCH(glViewport, (GLint x, GLint y, GLsizei width, GLsizei height), x, y, width, height)
OCT_WATCH(glClearColor, (GLclampf r, GLclampf g, GLclampf b, GLclampf a), r, g, b, a)
OCT_WATCH(glClear, (GLbitfield buffers), buffers)
OCT_WATCH(glDrawArrays, (GLenum mode, GLint first, GLsizei count), mode, first, count)
OCT_WATCH(glDrawElements, (GLenum mode, GLsizei count, GLenum type, const void* indices), mode, count, type,
          indices)
OCT_WATCH(glDrawBuffer, (GLenum buffer), buffer)
OCT_WATCH(glReadBuffer, (GLenum buffer), buffer)
OCT_WATCH(glGetTexLevelParameteriv, (GLenum target, GLint level, GLenum name, GLint* value), target, level,
          name, value)
OCT_WATCH(glReadPixels,
          (GLint x, GLint y, GLsizei width, GLsizei height, GLenum format, GLenum type, void* pixels), x, y,
          width, height, format, type, pixels)

#define OCT_COUNT(result, function, parameters, ...) \
  decltype(function) __real_##function;              \
  result GLAPIENTRY __wrap_##function parameters {   \
    if (spy) spy->count();                           \
    return __real_##function(__VA_ARGS__);           \
  }

OCT_COUNT(GLboolean, glIsEnabled, (GLenum capability), capability)
OCT_COUNT(void, glGetBooleanv, (GLenum query, GLboolean* value), query, value)
OCT_COUNT(void, glGetFloatv, (GLenum query, GLfloat* value), query, value)
OCT_COUNT(void, glGetDoublev, (GLenum query, GLdouble* value), query, value)
OCT_COUNT(void, glDepthRange, (GLclampd low, GLclampd high), low, high)
OCT_COUNT(void, glLineWidth, (GLfloat width), width)
OCT_COUNT(void, glPolygonMode, (GLenum face, GLenum mode), face, mode)
OCT_COUNT(void, glFlush, (void))
OCT_COUNT(void, glFinish, (void))

decltype(glTexImage2D) __real_glTexImage2D;
void GLAPIENTRY __wrap_glTexImage2D(GLenum target, GLint level, GLint internal, GLsizei width, GLsizei height,
                                    GLint border, GLenum format, GLenum type, const void* pixels) {
  const bool proxy = target == GL_PROXY_TEXTURE_2D;
  const std::string kind = internal == GL_R32F      ? "R32F"
                           : internal == GL_R16F    ? "R16F"
                           : internal == GL_RGBA32F ? "RGBA32F"
                                                    : "other";
  // A refused proxy has no extent; so has one that is asked for without.
  if (spy && spy->enter(kind + (proxy ? " proxy" : " texture"))) width = 0;
  watched(proxy ? "" : "glTexImage2D", __real_glTexImage2D, target, level, internal, width, height, border,
          format, type, pixels);
}

decltype(glGetError) __real_glGetError;
GLenum GLAPIENTRY __wrap_glGetError(void) {
  if (spy) spy->count();
  const GLenum error = spy ? spy->next_error() : GL_NO_ERROR;
  return error != GL_NO_ERROR ? error : __real_glGetError();
}

decltype(glGetString) __real_glGetString;
const GLubyte* GLAPIENTRY __wrap_glGetString(GLenum query) {
  const GLubyte* const text = __real_glGetString(query);
  if (spy) spy->enter("glGetString");
  const char* const answer = spy && text ? spy->text(query) : nullptr;
  return answer ? reinterpret_cast<const GLubyte*>(answer) : text;
}

decltype(glGetIntegerv) __real_glGetIntegerv;
void GLAPIENTRY __wrap_glGetIntegerv(GLenum query, GLint* value) {
  __real_glGetIntegerv(query, value);
  if (!spy) return;
  spy->count();
  spy->answer(query, value);
}

}  // extern "C"
