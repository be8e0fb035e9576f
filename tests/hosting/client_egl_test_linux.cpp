// Clients with EGL objects of their own.
#include <EGL/egl.h>
#include <EGL/eglext.h>

#include "oct_rendering/oct_rendering.h"
#include "support/test_context.h"

namespace oct::test {
namespace {

struct Current {
  EGLContext context = eglGetCurrentContext();
  EGLDisplay display = eglGetCurrentDisplay();
  EGLSurface draw = eglGetCurrentSurface(EGL_DRAW);
  EGLSurface read = eglGetCurrentSurface(EGL_READ);
  EGLenum api = eglQueryAPI();
  bool operator==(const Current&) const = default;
};

TEST(ClientEglGLTest, ApiAndSurfacesAreTheClientsAfterwards) {
  const auto get_display =
      reinterpret_cast<PFNEGLGETPLATFORMDISPLAYEXTPROC>(eglGetProcAddress("eglGetPlatformDisplayEXT"));
  const EGLDisplay display = get_display(EGL_PLATFORM_SURFACELESS_MESA, EGL_DEFAULT_DISPLAY, nullptr);
  ASSERT_TRUE(eglInitialize(display, nullptr, nullptr));
  const EGLint attributes[] = {EGL_SURFACE_TYPE, EGL_PBUFFER_BIT, EGL_RENDERABLE_TYPE, EGL_OPENGL_ES2_BIT,
                               EGL_NONE};
  EGLConfig config = nullptr;
  EGLint count = 0;
  ASSERT_TRUE(eglChooseConfig(display, attributes, &config, 1, &count));
  const EGLint size[] = {EGL_WIDTH, 4, EGL_HEIGHT, 4, EGL_NONE};
  const EGLSurface surfaces[] = {eglCreatePbufferSurface(display, config, size),
                                 eglCreatePbufferSurface(display, config, size)};
  const EGLint version[] = {EGL_CONTEXT_CLIENT_VERSION, 2, EGL_NONE};
  ASSERT_TRUE(eglBindAPI(EGL_OPENGL_ES_API));
  const EGLContext context = eglCreateContext(display, config, EGL_NO_CONTEXT, version);
  ASSERT_TRUE(eglMakeCurrent(display, surfaces[0], surfaces[1], context));
  const Current client;

  const OffscreenTargetHandle target = createOffscreenTarget();
  EXPECT_EQ(eglQueryAPI(), static_cast<EGLenum>(EGL_OPENGL_ES_API));
  EXPECT_NE(eglGetCurrentContext(), context);
  ASSERT_TRUE(eglMakeCurrent(display, surfaces[0], surfaces[1], context));
  beginOffscreenFrame(target, 4, 4);
  finishOffscreenFrame(target, nullptr);
  EXPECT_EQ(Current(), client);
  clearOffscreenTarget(target);
  EXPECT_EQ(Current(), client);
  clearOffscreenTarget(createOffscreenTarget());
  EXPECT_EQ(Current(), client);
  setSurfaceSharing(1);
  const OpenGLControlHandle control = createUniversalOpenGLControl();
  ASSERT_TRUE(eglMakeCurrent(display, surfaces[0], surfaces[1], context));
  deleteUniversalOpenGLControl(control);
  EXPECT_EQ(Current(), client);
  deleteUniversalOpenGLControl(createUniversalOpenGLControl());
  EXPECT_EQ(Current(), client);
  EXPECT_EQ(pending_error(), "(none)");

  eglMakeCurrent(display, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
  eglDestroyContext(display, context);
  for (const EGLSurface surface : surfaces) eglDestroySurface(display, surface);
  eglBindAPI(EGL_OPENGL_API);
}

}  // namespace
}  // namespace oct::test
