// Many loops, one after the other, leave nothing behind; several at once do not disturb each other.
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

  void lives(int count, const GlSpy& spy) {
    for (int id = 0; id < count; ++id) {
      auto loop = make_recording_loop(16, 12);
      const std::size_t before = returned_.all().size();
      for (int i = 0; i < 4; ++i) loop->request(4 * id + i);
      Picture picture(6, 5);
      if (id % 4 == 0) loop->snapshot(6, 5, picture.bytes.data());
      EXPECT_GE(returned_.at_least(before + 3).size(), before + 3);
      loop.reset();
      ASSERT_EQ(spy.live_objects(), 0U) << "after life " << id;
    }
  }
};

TEST_P(LoopLifetimeGLTest, ManyLoopsAreFlat) {
  const int count = surface_kind(SurfaceSharing::direct3d).available
                        ? 60
                        : 200;  // where there is Direct3D, threads are slow to come and go
  const auto device = keep_direct3d(GetParam());
  TestContext loads_opengl;
  const GlSpy spy;
  lives(20, spy);  // what drivers build once
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
  EXPECT_LE(handle_count(), handles + 3);
  EXPECT_GT(handles, 0U);
  EXPECT_EQ(held_references(GetParam()), references);
  EXPECT_GE(spy.calls("glGenFramebuffers"), count * 3);
  if (measures_memory) {
    EXPECT_LT(resident_memory(), memory + (std::size_t{8} << 20));
  }
}

TEST_P(LoopLifetimeGLTest, SeveralLoopsAtOnce) {
  prepareOpenGL();
  std::vector<std::unique_ptr<OpenGLControlLoop>> loops;
  for (int i = 0; i < 6; ++i) loops.push_back(make_recording_loop(10, 10));
  for (int id = 0; id < 60; ++id) loops[static_cast<std::size_t>(id % 6)]->request(id / 6);
  loops.resize(3);
  for (const auto& loop : loops) {
    const std::size_t before = returned_.all().size();
    loop->request(1000);
    EXPECT_GT(returned_.at_least(before + 1).size(), before);
  }
  loops.clear();
  finishOpenGL();
}

OCT_EVERY_SHARING(LoopLifetimeGLTest);

}  // namespace
}  // namespace oct::test
