#include <cmath>
#include <thread>

#include "hosting/loop/opengl_control.h"
#include "hosting/offscreen/offscreen_buffer_object.h"
#include "oct_rendering/oct_rendering.h"
#include "support/gl_spy.h"
#include "support/surfaces.h"
#include "support/test_context.h"
#include "support/test_loop.h"

namespace oct::test {
namespace {

class ControlGLTest : public LoopGLTest {};

TEST_P(ControlGLTest, AClientDrivesItsOwnControl) {
  // What a driver left behind while the context was made is told and does no harm.
  const TestContext loads_opengl;
  GlSpy spy;
  spy.queue_error(GL_INVALID_ENUM);
  testing::internal::CaptureStderr();
  const OpenGLControlHandle control = createUniversalOpenGLControl();
  EXPECT_EQ(testing::internal::GetCapturedStderr().find(
                "An OpenGL error in OpenGLControl occured: An unacceptable"),
            0U);
  ASSERT_NE(control, nullptr);
  EXPECT_NE(glGetString(GL_VERSION), nullptr);
  for (const auto call : {beforeRender, renderTestImage, updateBuffer, readBuffer}) call(control);
  ClientContext client;
  deleteUniversalOpenGLControl(control);
  EXPECT_EQ(gl::current_context(), client.handle()) << "the client's own";
  deleteUniversalOpenGLControl(nullptr);
  EXPECT_EQ(pending_error(), "(none)");
  expect_null_refused("The specified OpenGLControlHandle is invalid. ", beforeRender, updateBuffer,
                      readBuffer, renderTestImage);
}

OCT_EVERY_SHARING(ControlGLTest);

// The angle of the triangle's red corner, in degrees to the left of the upright.
double angle_of(const std::function<void()>& draw) {
  OffscreenBufferObject buffer;
  Picture picture(200, 200);
  buffer.prepare(200, 200);
  draw();
  buffer.finish(picture.bytes.data());
  buffer.release();
  EXPECT_EQ(picture.bgra(0, 199), (std::array<int, 4>{0, 255, 255, 255}));      // yellow
  for (int c = 0; c < 3; ++c) EXPECT_NEAR(picture.pixel(100, 100)[c], 85, 12);  // the three colours mixed
  double best = -1.0;
  double result = 0.0;
  picture.for_each([&](int x, int y) {
    const auto [blue, green, red, alpha] = picture.bgra(x, y);
    if (red <= 150 || green >= 80 || blue >= 80 || red - green - blue <= best) return;
    best = red - green - blue;
    result = std::atan2(99.5 - x, y - 99.5) * 180.0 / 3.14159265358979;
  });
  return result;
}

// By a degree a call; the controls' image and that of clients without control turn on their own.
TEST(TestImageGLTest, TurnsCallByCall) {
  OpenGLControl control(SurfaceSharing::host_memory);
  const auto turn = [&] { control.render_test_image(); };
  const double client = angle_of(glRenderTestImage);
  const double own = angle_of(turn);
  for (int i = 0; i < 9; ++i) glRenderTestImage();
  for (int i = 0; i < 29; ++i) turn();
  EXPECT_NEAR(angle_of(glRenderTestImage) - client, 10.0, 1.0);
  EXPECT_NEAR(angle_of(turn) - own, 30.0, 1.0);
  std::thread([] {
    glRenderTestImage();
    EXPECT_EQ(pending_error(), "No OpenGL context is current on the calling thread. ");
  }).join();
}

TEST(SurfaceSharingTest, OnlyWhatThePlatformHas) {
  const int before = static_cast<int>(surface_sharing());
  for (const int value : {-1, 2, 100}) {
    ::setSurfaceSharing(value);
    EXPECT_EQ(pending_error(), "Invalid surface sharing selected. ");
  }
  if (!surface_kind(SurfaceSharing::direct3d).available) {
    ::setSurfaceSharing(0);
    EXPECT_EQ(pending_error(), "Ressouce sharing between OpenGL and DirectX not supported. ");
  }
  EXPECT_EQ(static_cast<int>(surface_sharing()), before);
}

}  // namespace
}  // namespace oct::test
