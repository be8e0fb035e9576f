// Exports of controls, of surface sharing and of the host of hidden windows.
#include <atomic>

#include "api/api_frame.h"
#include "gl/context/opengl_loader.h"
#include "hosting/loop/opengl_control.h"
#include "hosting/host/opengl_host.h"
#include "hosting/surfaces/surface_sharing.h"
#include "hosting/loop/test_image.h"
#include "oct_rendering/oct_rendering.h"

using oct::OpenGLControl;
using oct::api::frame;

namespace {

std::atomic<int> testImageAngle{0};  // degrees; not that of the controls' own test images

OpenGLControl& control(OpenGLControlHandle handle) {
  return oct::api::checked<OpenGLControl>(handle, "The specified OpenGLControlHandle is invalid. ");
}

}  // namespace

void setSurfaceSharing(int Sharing) {
  frame(__func__, [&] { oct::setSurfaceSharing(Sharing); });
}

OpenGLControlHandle createUniversalOpenGLControl(void) {
  return frame(__func__,
               [] { return oct::api::handleOf<OctOpenGLControl>(new OpenGLControl(oct::surfaceSharing())); });
}

void deleteUniversalOpenGLControl(OpenGLControlHandle Handle) {
  frame(__func__, [&] { delete reinterpret_cast<OpenGLControl*>(Handle); });
}

void beforeRender(OpenGLControlHandle Handle) {
  frame(__func__, [&] { control(Handle); });
}

void updateBuffer(OpenGLControlHandle Handle) {
  frame(__func__, [&] { control(Handle); });
}

void readBuffer(OpenGLControlHandle Handle) {
  frame(__func__, [&] { control(Handle); });
}

void renderTestImage(OpenGLControlHandle Handle) {
  frame(__func__, [&] { control(Handle).render_test_image(); });
}

void glRenderTestImage(void) {
  frame(__func__, [] {
    oct::gl::requireOpenGL();
    oct::drawTestImage(testImageAngle++);
  });
}

void prepareOpenGL(void) {
  frame(__func__, [] { oct::OpenGLHost::prepare(); });
}

void finishOpenGL(void) {
  frame(__func__, [] { oct::OpenGLHost::finish(); });
}
