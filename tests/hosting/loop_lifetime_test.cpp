// Two hundred loops, one after the other, leave nothing behind.
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
  void oneLife(std::uint32_t id) {
    auto loop = makeRecordingLoop(16, 12);
    const std::size_t before = returned_.all().size();
    for (std::uint32_t i = 0; i < 4; ++i) loop->request(static_cast<std::int32_t>(4 * id + i));
    Picture picture(6, 5);
    if (id % 4 == 0) loop->snapshot(6, 5, picture.bytes.data());
    EXPECT_GE(returned_.atLeast(before + 3).size(), before + 3);
  }

  void lives(std::uint32_t count, const GlSpy& spy) {
    for (std::uint32_t i = 0; i < count; ++i) {
      oneLife(i);
      ASSERT_EQ(spy.liveObjects(), 0U) << "after life " << i;
    }
  }

  // A thread that was joined may take a moment to leave the system's tables.
  static std::size_t settledThreadCount(std::size_t expected) {
    for (int i = 0; i < 100 && threadCount() > expected; ++i)
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
    return threadCount();
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
  EXPECT_LE(settledThreadCount(threads), threads);
  EXPECT_LE(handleCount(), handles + 3);
  EXPECT_GT(handles, 0U);
  EXPECT_EQ(heldReferences(GetParam()), references);
  EXPECT_GE(spy.calls("glGenFramebuffers"), 200 * 3);
  if (measuresMemory) {
    EXPECT_LT(residentMemory(), memory + (std::size_t{8} << 20));
    RecordProperty(
        "grown_kib",
        static_cast<int>((static_cast<double>(residentMemory()) - static_cast<double>(memory)) / 1024.0));
  }
  EXPECT_EQ(errors_.all(), std::vector<std::string>{});
}

TEST_P(LoopLifetimeGLTest, SeveralLoopsAtOnce) {
  prepareOpenGL();
  {
    std::vector<std::unique_ptr<OpenGLControlLoop>> loops;
    for (int i = 0; i < 6; ++i) loops.push_back(makeRecordingLoop(10, 10));
    for (int round = 0; round < 10; ++round) {
      for (const auto& loop : loops) loop->request(round);
    }
    for (std::size_t i = 0; i < loops.size(); i += 2) loops[i].reset();
    for (std::size_t i = 1; i < loops.size(); i += 2) {
      const std::size_t before = returned_.all().size();
      loops[i]->request(1000);
      EXPECT_GT(returned_.atLeast(before + 1).size(), before);
    }
  }
  finishOpenGL();
  EXPECT_EQ(errors_.all(), std::vector<std::string>{});
  EXPECT_EQ(pendingError(), "(none)");
}

OCT_EVERY_SHARING(LoopLifetimeGLTest);

}  // namespace
}  // namespace oct::test
