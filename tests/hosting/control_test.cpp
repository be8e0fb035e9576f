#include "hosting/loop/opengl_control.h"

#include <cmath>
#include <future>
#include <thread>

#include "hosting/surfaces/direct3d_sharing.h"
#include "oct_rendering/oct_rendering.h"
#include "support/gl_spy.h"
#include "support/surfaces.h"
#include "support/test_context.h"
#include "support/test_loop.h"

namespace oct::test {
namespace {

class ControlGLTest : public LoopGLTest {
 protected:
  static std::vector<int> ids(OpenGLControl& control, int count) {
    std::vector<int> result;
    for (int i = 0; i < count; ++i) {
      result.push_back(control.current_buffer().buffer_id());
      control.rotate_buffers();
    }
    return result;
  }
};

TEST_P(ControlGLTest, FourFramesUseThreeBuffers) {
  OpenGLControl control(GetParam());
  EXPECT_EQ(control.current_buffer().order_key(), -1);
  EXPECT_EQ(control.current_buffer().width(), 0U);
  EXPECT_EQ(control.pending_snapshot(), nullptr);
  EXPECT_EQ(ids(control, 4), (std::vector<int>{0, 1, 2, 0}));
}

TEST_P(ControlGLTest, ASnapshotTakesTheFrontPlaceUntilItIsThere) {
  OpenGLControl control(GetParam());
  EXPECT_FALSE(control.wait_for_snapshot());
  Picture picture(7, 5);
  control.snapshot(7, 5, picture.bytes.data());
  OffscreenBufferObject* const buffer = control.pending_snapshot();
  ASSERT_NE(buffer, nullptr);
  auto waiter = std::async(std::launch::async, [&] { return control.wait_for_snapshot(); });
  buffer->prepare();
  drawPattern(0x99);
  buffer->finish();
  EXPECT_TRUE(waiter.get());
  EXPECT_EQ(control.pending_snapshot(), nullptr);
  EXPECT_TRUE(agree(picture, patternPicture(0x99, 7, 5), exact));

  control.snapshot(7, 5, picture.bytes.data());
  control.cancel_snapshot();
  EXPECT_FALSE(control.wait_for_snapshot());
}

// What a driver left behind while the context was made is told and does no harm.
TEST_P(ControlGLTest, AnOpenGLErrorOfTheStartIsPrinted) {
  const TestContext loadsOpenGL;
  GlSpy spy;
  spy.queueError(GL_INVALID_ENUM);
  testing::internal::CaptureStderr();
  const OpenGLControl control(GetParam());
  EXPECT_EQ(testing::internal::GetCapturedStderr().find(
                "An OpenGL error in OpenGLControl occured: An unacceptable"),
            0U);
}

TEST_P(ControlGLTest, AClientDrivesItsOwnControl) {
  const OpenGLControlHandle control = createUniversalOpenGLControl();
  ASSERT_NE(control, nullptr);
  EXPECT_NE(glGetString(GL_VERSION), nullptr);
  beforeRender(control);
  renderTestImage(control);
  updateBuffer(control);
  readBuffer(control);
  deleteUniversalOpenGLControl(control);
  EXPECT_EQ(pendingError(), "(none)");
  deleteUniversalOpenGLControl(nullptr);
  EXPECT_EQ(pendingError(), "(none)");
  expectNullRefused("The specified OpenGLControlHandle is invalid. ", beforeRender, updateBuffer, readBuffer,
                    renderTestImage);
}

OCT_EVERY_SHARING(ControlGLTest);

class TestImageGLTest : public GLTest {
 protected:
  static Picture picture(const std::function<void()>& draw) {
    OffscreenBufferObject buffer;
    Picture result(200, 200);
    buffer.resize(200, 200);
    buffer.set_output_data(result.bytes.data());
    buffer.prepare();
    draw();
    buffer.finish();
    buffer.release();
    return result;
  }

  // The triangle's red corner, as an angle in degrees to the left of the upright.
  static double angle(const Picture& picture) {
    double best = -1.0;
    double result = 0.0;
    picture.forEach([&](int x, int y) {
      const auto [blue, green, red, alpha] = picture.bgra(x, y);
      if (red <= 150 || green >= 80 || blue >= 80 || red - green - blue <= best) return;
      best = red - green - blue;
      result = std::atan2(99.5 - x, y - 99.5) * 180.0 / 3.14159265358979;
    });
    return result;
  }
};

TEST_F(TestImageGLTest, TenCallsTurnItByTenDegrees) {
  const Picture first = picture(glRenderTestImage);
  for (int i = 0; i < 8; ++i) picture(glRenderTestImage);
  const Picture tenth = picture(glRenderTestImage);  // the tenth call draws at 9 degrees
  const Picture eleventh = picture(glRenderTestImage);
  EXPECT_NEAR(angle(tenth) - angle(first), 9.0, 1.0);
  EXPECT_NEAR(angle(eleventh) - angle(first), 10.0, 1.0);
}

// Each has its own angle, and a control turns its image before it draws.
TEST_F(TestImageGLTest, ControlsTurnTheirsOnTheirOwn) {
  chooseSharing(SurfaceSharing::hostMemory);
  {
    OpenGLControl control(SurfaceSharing::hostMemory);
    const auto draw = [&] { control.render_test_image(); };
    const Picture first = picture(draw);
    for (int i = 0; i < 30; ++i) glRenderTestImage();
    for (int i = 0; i < 9; ++i) control.render_test_image();
    EXPECT_NEAR(angle(picture(draw)) - angle(first), 10.0, 1.0);
  }
  context_.makeCurrent();
}

TEST_F(TestImageGLTest, NeedsAContext) {
  std::thread([] {
    glRenderTestImage();
    EXPECT_EQ(pendingError(), "No OpenGL context is current on the calling thread. ");
  }).join();
}

TEST(SurfaceSharingTest, OnlyWhatThePlatformHas) {
  const int before = static_cast<int>(surfaceSharing());
  for (const int value : {-1, 2, 100}) {
    ::setSurfaceSharing(value);
    EXPECT_EQ(pendingError(), "Invalid surface sharing selected. ");
  }
  if (!hasDirect3D) {
    ::setSurfaceSharing(0);
    EXPECT_EQ(pendingError(), "Ressouce sharing between OpenGL and DirectX not supported. ");
  }
  EXPECT_EQ(static_cast<int>(surfaceSharing()), before);
}

}  // namespace
}  // namespace oct::test
