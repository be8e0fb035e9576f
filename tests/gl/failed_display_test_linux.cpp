// A display that cannot be opened, in a process that has not opened one yet.
#include <EGL/egl.h>

#include "support/test_context.h"

namespace oct::test {
namespace {

bool refused = false;

TEST(FailedDisplayTest, IsToldWithItsReasonAndTriedAgain) {
  const std::string failure =
      "An error occured. Could not create hidden window for OpenGL output: Not enough memory (EGL_BAD_ALLOC)";
  refused = true;
  for (int i = 0; i < 2; ++i) EXPECT_EQ(failure_of([] { const gl::OpenGLWindow window; }), failure);
  refused = false;
  EXPECT_EQ(failure_of([] { const gl::OpenGLWindow window; }), "(none)");
}

}  // namespace
}  // namespace oct::test

// The linker routes the library's calls here.
extern "C" {

decltype(eglInitialize) __real_eglInitialize;
EGLBoolean __wrap_eglInitialize(EGLDisplay display, EGLint* major, EGLint* minor) {
  return oct::test::refused ? EGL_FALSE : __real_eglInitialize(display, major, minor);
}

decltype(eglGetError) __real_eglGetError;
EGLint __wrap_eglGetError() {
  const EGLint error = __real_eglGetError();
  return oct::test::refused ? EGL_BAD_ALLOC : error;
}

}  // extern "C"
