// Two hundred loops, one after the other, leave nothing behind; several at once do not disturb each other.
#include <thread>

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
    EXPECT_EQ(pendingError(), "(none)");
  }

  void lives(int count, const GlSpy& spy) {
    for (int id = 0; id < count; ++id) {
      auto loop = makeRecordingLoop(16, 12);
      const std::size_t before = returned_.all().size();
      for (int i = 0; i < 4; ++i) loop->request(4 * id + i);
      Picture picture(6, 5);
      if (id % 4 == 0) loop->snapshot(6, 5, picture.bytes.data());
      EXPECT_GE(returned_.atLeast(before + 3).size(), before + 3);
      loop.reset();
      ASSERT_EQ(spy.liveObjects(), 0U) << "after life " << id;
    }
  }
};

TEST_P(LoopLifetimeGLTest, TwoHundredLoopsAreFlat) {
  const auto device = keepDirect3D(GetParam());
  TestContext loadsOpenGL;
  const GlSpy spy;
  lives(20, spy);  // what drivers build once
  const int references = heldReferences(GetParam());
  const std::size_t threads = threadCount();
  const std::size_t handles = handleCount();
  const std::size_t memory = residentMemory();
  lives(200, spy);
  // A thread that was joined may take a moment to leave the system's tables.
  for (int i = 0; i < 100 && threadCount() > threads; ++i) {
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  EXPECT_LE(threadCount(), threads);
  EXPECT_LE(handleCount(), handles + 3);
  EXPECT_GT(handles, 0U);
  EXPECT_EQ(heldReferences(GetParam()), references);
  EXPECT_GE(spy.calls("glGenFramebuffers"), 200 * 3);
  if (measuresMemory) {
    EXPECT_LT(residentMemory(), memory + (std::size_t{8} << 20));
  }
}

TEST_P(LoopLifetimeGLTest, SeveralLoopsAtOnce) {
  prepareOpenGL();
  std::vector<std::unique_ptr<OpenGLControlLoop>> loops;
  for (int i = 0; i < 6; ++i) loops.push_back(makeRecordingLoop(10, 10));
  for (int id = 0; id < 60; ++id) loops[static_cast<std::size_t>(id % 6)]->request(id / 6);
  loops.resize(3);
  for (const auto& loop : loops) {
    const std::size_t before = returned_.all().size();
    loop->request(1000);
    EXPECT_GT(returned_.atLeast(before + 1).size(), before);
  }
  loops.clear();
  finishOpenGL();
}

OCT_EVERY_SHARING(LoopLifetimeGLTest);

}  // namespace
}  // namespace oct::test
