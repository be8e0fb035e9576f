// Thousands of frames through the ring, with a client that is slow now and then.
#include <random>
#include <thread>

#include "support/process_memory.h"
#include "support/test_loop.h"

namespace oct::test {
namespace {

class LoopFramesGLTest : public LoopGLTest {};

TEST_P(LoopFramesGLTest, ArriveInOrderWithTheirPixels) {
  // Sanitizers are slow, and so is a surface of Direct3D to read.
  const std::uint32_t count = measures_memory && GetParam() == SurfaceSharing::host_memory ? 10000 : 1000;
  constexpr int width = 12;
  constexpr int height = 9;
  auto loop = make_loop();
  loop->set_rendering_callback(rendering([](std::uint32_t id) { draw_pattern(id * 1667); }));
  std::mt19937 random(1);
  std::uint32_t came = 0;
  int wrong = 0;
  loop->set_image_ready_callback(image_ready([&](Index index, void* surface) {
    if (random() % 200 == 0) std::this_thread::sleep_for(std::chrono::microseconds(random() % 5000));
    // After the stall, in which a render thread that does not keep off would have drawn over the frame.
    const Picture picture = surface_picture(GetParam(), surface);
    wrong += index != ++came || picture.bytes != pattern_picture(index * 1667, width, height).bytes;
    if (index == count || wrong >= 100) returned_.add(index);
  }));
  loop->set_mode(OpenGLControlLoop::once_each);
  loop->resize(width, height);
  for (std::uint32_t id = 1; id <= count; ++id) loop->request(static_cast<std::int32_t>(id));
  for (int patience = 0; patience < 24 && returned_.all().empty() && errors_.all().empty(); ++patience) {
    returned_.at_least(1);
  }
  EXPECT_EQ(errors_.all(), std::vector<std::string>{});
  loop.reset();
  EXPECT_EQ(wrong, 0);
  EXPECT_EQ(came, count);
}

OCT_EVERY_SHARING(LoopFramesGLTest);

}  // namespace
}  // namespace oct::test
