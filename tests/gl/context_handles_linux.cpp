#include "gl/context_handles.h"

#include <EGL/egl.h>

namespace oct::test {
namespace {

Handles mode = Handles::known;
char gone = 0;

}  // namespace

constexpr bool can_change_context_handles = true;

ChangedContextHandles::ChangedContextHandles(Handles handles) {
  mode = handles;
}
ChangedContextHandles::~ChangedContextHandles() {
  mode = Handles::known;
}

}  // namespace oct::test

// The linker routes the library's calls here.
extern "C" {

decltype(eglGetCurrentContext) __real_eglGetCurrentContext;
EGLContext __wrap_eglGetCurrentContext() {
  using oct::test::Handles;
  const EGLContext context = __real_eglGetCurrentContext();
  if (oct::test::mode == Handles::known || context == EGL_NO_CONTEXT) return context;
  return oct::test::mode == Handles::same ? &oct::test::gone : EGL_NO_CONTEXT;
}

}  // extern "C"
