// Many loops, one after the other and at once, leave nothing behind and do not disturb each other.
#include <thread>

#include "hosting/surfaces/surface_sharing.h"
#include "oct_rendering/oct_rendering.h"
#include "support/gl_spy.h"
#include "support/process_memory.h"
#include "support/test_context.h"
#include "support/test_loop.h"

namespace oct::test {
namespace {

class LoopLifetimeGLTest : public LoopGLTest {
 protected:
  void TearDown() override {
    EXPECT_EQ(errors_.all(), std::vector<std::string>{});
    EXPECT_EQ(pending_error(), "(none)");
  }

  // Two at once, of which one outlives the other.
  void lives(int count, const GlSpy& spy) {
    for (std::uint32_t id = 0; id < static_cast<std::uint32_t>(6 * count); id += 6) {
      std::unique_ptr<OpenGLControlLoop> loops[] = {make_recording_loop(16, 12), make_recording_loop(10, 10)};
      for (std::uint32_t i = 0; i < 5; ++i) loops[i % 2]->request(static_cast<std::int32_t>(id + i));
      await_returned(id + 4);
      loops[0].reset();
      Picture picture(6, 5);
      if (id % 4 == 0) loops[1]->snapshot(6, 5, picture.bytes.data());
      loops[1]->request(static_cast<std::int32_t>(id + 5));
      await_returned(id + 5);
      loops[1].reset();
      ASSERT_EQ(spy.live_objects(), 0U) << "after life " << id;
      returned_.clear();
    }
  }
};

TEST_P(LoopLifetimeGLTest, ManyLoopsAreFlat) {
  // As many handles would be left as loops: more than the slack below. Sanitizers are slow, and where there is Direct3D
  // threads are slow to come and go.
  const bool slow = !measures_memory || surface_kind(SurfaceSharing::direct3d).available;
  const int count = slow ? 20 : 100;
  const auto device = keep_direct3d(GetParam());
  TestContext loads_opengl;
  const GlSpy spy;
  lives(10, spy);  // what drivers build once
  const int references = held_references(GetParam());
  const std::size_t threads = thread_count();
  const std::size_t handles = handle_count();
  const std::size_t memory = resident_memory();
  lives(count, spy);
  // A thread that was joined may take a moment to leave the system's tables.
  for (int i = 0; i < 100 && thread_count() > threads; ++i) {
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  EXPECT_LE(thread_count(), threads);
  EXPECT_LE(handle_count(), handles + 6);
  EXPECT_GT(handles, 0U);
  EXPECT_EQ(held_references(GetParam()), references);
  EXPECT_GE(spy.calls("glGenFramebuffers"), count * 6);
  if (measures_memory) {
    EXPECT_LT(resident_memory(), memory + (std::size_t{8} << 20));
  }
}

OCT_EVERY_SHARING(LoopLifetimeGLTest);

}  // namespace
}  // namespace oct::test
