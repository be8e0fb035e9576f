// Exports of controls, of surface sharing and of the host of hidden windows.
#include <atomic>

#include "api/guard.h"
#include "api/handles.h"
#include "gl/context/opengl_loader.h"
#include "hosting/host/opengl_host.h"
#include "hosting/loop/opengl_control.h"
#include "hosting/loop/test_image.h"
#include "hosting/surfaces/surface_sharing.h"
#include "oct_rendering/oct_rendering.h"

using oct::OpenGLControl;
using oct::api::guarded;

namespace {

std::atomic<int> test_image_angle{0};  // degrees; not that of the controls' own test images

OpenGLControl& control(OpenGLControlHandle handle) {
  return oct::api::checked<OpenGLControl>(handle, "The specified OpenGLControlHandle is invalid. ");
}

}  // namespace

void setSurfaceSharing(int Sharing) {
  guarded(__func__, [&] { oct::set_surface_sharing(Sharing); });
}

void setHostPixelFormat(int Format) {
  guarded(__func__, [&] { oct::set_host_pixel_format(Format); });
}

OpenGLControlHandle createUniversalOpenGLControl(void) {
  return guarded(__func__, [] {
    return oct::api::handle_of<OctOpenGLControl>(std::make_unique<OpenGLControl>(oct::surfaces_to_come()));
  });
}

void deleteUniversalOpenGLControl(OpenGLControlHandle Handle) {
  guarded(__func__, [&] {
    if (Handle) oct::api::delete_object<OpenGLControl>(Handle);
  });
}

void beforeRender(OpenGLControlHandle Handle) {
  guarded(__func__, [&] { control(Handle); });
}

void updateBuffer(OpenGLControlHandle Handle) {
  guarded(__func__, [&] { control(Handle); });
}

void readBuffer(OpenGLControlHandle Handle) {
  guarded(__func__, [&] { control(Handle); });
}

void renderTestImage(OpenGLControlHandle Handle) {
  guarded(__func__, [&] { control(Handle).render_test_image(); });
}

void glRenderTestImage(void) {
  guarded(__func__, [] {
    oct::gl::require_opengl();
    oct::draw_test_image(test_image_angle++);
  });
}

void prepareOpenGL(void) {
  guarded(__func__, [] { oct::OpenGLHost::prepare(); });
}

void finishOpenGL(void) {
  guarded(__func__, [] { oct::OpenGLHost::finish(); });
}
