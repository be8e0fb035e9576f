// The order of a client's pixels: every format is the same picture, its pixels moved.
#include <cstring>

#include "hosting/surfaces/client_surfaces.h"
#include "oct_rendering/oct_rendering.h"
#include "support/pictures.h"
#include "support/test_context.h"
#include "support/test_loop.h"

namespace oct::test {
namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr int odd_width = 7, odd_height = 5;
constexpr std::uint32_t odd_id = 0x1E50A0;

Bytes in_format(const Picture& picture, int format) {
  Bytes bytes;
  for (int row = 0; row < picture.height; ++row) {
    for (int x = 0; x < picture.width; ++x) {
      auto [blue, green, red, alpha] = picture.bgra(x, format >= 2 ? picture.height - 1 - row : row);
      if (format % 2 == 1) std::swap(blue, red);
      for (const int channel : {blue, green, red, alpha}) bytes.push_back(static_cast<std::uint8_t>(channel));
    }
  }
  return bytes;
}

Bytes rows_of(const OctHostSurface& surface) {
  Bytes bytes;
  for (unsigned y = 0; y < surface.height; ++y) {
    const unsigned char* const row = surface.pixels + std::size_t{y} * surface.stride_bytes;
    bytes.insert(bytes.end(), row, row + std::size_t{surface.width} * 4);
  }
  return bytes;
}

// With the driver's own way to turn the rows over, where it has one, and as for drivers that have none.
class PixelFormatGLTest : public testing::TestWithParam<bool> {
 protected:
  PixelFormatGLTest() : target_(createOffscreenTarget()) {
    setSurfaceSharing(OCT_SHARING_HOST_MEMORY);
    if (!GetParam()) __GLEW_MESA_pack_invert = GL_FALSE;
  }
  ~PixelFormatGLTest() override {
    setHostPixelFormat(OCT_PIXELS_BGRA);
    __GLEW_MESA_pack_invert = driver_has_it_;
    clearOffscreenTarget(target_);
    EXPECT_EQ(pending_error(), "(none)");
  }

  const OffscreenTargetHandle target_;
  const GLboolean driver_has_it_ = __GLEW_MESA_pack_invert;
};

// Whatever the client leaves set, and in formats and sizes that follow each other.
TEST_P(PixelFormatGLTest, OffscreenFrames) {
  for (const auto& [columns, rows] :
       {std::pair{odd_width, odd_height}, {1, 1}, {4, 3}, {odd_width, odd_height}}) {
    for (const int format : {2, 0, 3, 1, 2}) {
      beginOffscreenFrame(target_, static_cast<unsigned>(columns), static_cast<unsigned>(rows));
      draw_pattern(odd_id);
      glEnable(GL_SCISSOR_TEST);
      if (GetParam() && driver_has_it_) glPixelStorei(GL_PACK_INVERT_MESA, 1);
      glPixelStorei(GL_PACK_ROW_LENGTH, 9);
      Bytes pixels(static_cast<std::size_t>(columns) * static_cast<std::size_t>(rows) * 4);
      finishOffscreenFrameAs(target_, 4, pixels.data());
      EXPECT_EQ(pending_error(), "Invalid pixel format selected. ");
      EXPECT_EQ(glIsEnabled(GL_SCISSOR_TEST), GL_TRUE);
      finishOffscreenFrameAs(target_, format, pixels.data());
      EXPECT_EQ(pending_error(), "(none)");
      EXPECT_EQ(pixels, in_format(pattern_picture(odd_id, columns, rows), format)) << format;
      beginOffscreenFrame(target_, 1, 1);
      EXPECT_EQ(glIsEnabled(GL_SCISSOR_TEST), GL_TRUE) << "the client's still";
      glDisable(GL_SCISSOR_TEST);
      finishOffscreenFrame(target_, nullptr);
    }
  }
}

// Of loops made after the choice, their snapshots in whatever format, and the surfaces that go with them.
TEST_P(PixelFormatGLTest, FramesSnapshotsAndSurfacesOfLoops) {
  std::vector<std::unique_ptr<OpenGLControlLoop>> loops;
  std::vector<void*> surfaces;
  for (const int format : {0, 1, 2, 3}) {
    setHostPixelFormat(format);
    loops.push_back(std::make_unique<OpenGLControlLoop>());
    setHostPixelFormat(OCT_PIXELS_BGRA);
    OpenGLControlLoop& loop = *loops.back();
    const Bytes expected = in_format(pattern_picture(odd_id, odd_width, odd_height), format);
    surfaces.push_back(client_surfaces().create(loop.surfaces(), odd_width, odd_height));
    Recorded<Bytes> frames;
    loop.set_mode(OpenGLControlLoop::once_each);
    loop.resize(odd_width, odd_height);
    loop.set_rendering_callback(RenderingCallback([](std::uint32_t) { draw_pattern(odd_id); }));
    loop.set_image_ready_callback(image_ready([&](Index, void* surface) {
      client_surfaces().copy(loop.surfaces(), surface, surfaces.back());
      frames.add(rows_of(*static_cast<const OctHostSurface*>(surface)));
    }));
    for (std::size_t count = 1; count < 5; ++count) {  // once round the ring
      loop.request(1);
      EXPECT_EQ(frames.at_least(count).back(), expected) << format;
    }
    for (const int other : {3, 0, 2, 1}) {
      Bytes pixels(11 * 3 * 4);
      loop.snapshot(11, 3, pixels.data(), gl::pixel_format_of(other));
      EXPECT_EQ(pixels, in_format(pattern_picture(odd_id, 11, 3), other)) << other;
    }
    loop.set_image_ready_callback({});
    EXPECT_EQ(rows_of(*static_cast<const OctHostSurface*>(surfaces.back())), expected);
    const auto copy = [&] { client_surfaces().copy(loop.surfaces(), surfaces.front(), surfaces.back()); };
    EXPECT_EQ(failure_of(copy),
              format == 0 ? "(none)" : "The surface is of another kind than those of the loop. ");
  }
  for (void* const surface : surfaces) client_surfaces().destroy(surface);
  const std::string refused = "Invalid pixel format selected. ";
  Bytes pixels(4);
  auto* const loop = createOpenGLControlLoop();
  expect_refused({{refused, [] { setHostPixelFormat(-1); }},
                  {refused, [&] { snapshotOpenGLControlLoopAs(loop, 1, 1, 4, pixels.data()); }}});
  deleteOpenGLControlLoop(loop);
}

INSTANTIATE_TEST_SUITE_P(Hosting, PixelFormatGLTest, testing::Bool());

}  // namespace
}  // namespace oct::test
