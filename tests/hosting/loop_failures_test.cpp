// Control loops where the system gives no memory or no thread: every such failure once, with a clear error,
// and nobody is kept waiting.
#include <atomic>
#include <system_error>
#include <thread>

#include "oct_rendering/oct_rendering.h"
#include "support/process_memory.h"
#include "support/scarce_resources.h"
#include "support/test_context.h"
#include "support/test_loop.h"

namespace oct::test {
namespace {

Recorded<std::string> errors;
std::atomic<int> inits{0};
bool init_fails = false;

OpenGLControlLoopHandle create(std::atomic<int>& uninits) {
  return createOpenGLControlLoopCBWithUser(
      [](void*) {
        ++inits;
        if (init_fails) throw std::runtime_error("no more");
      },
      [](void* count) { ++*static_cast<std::atomic<int>*>(count); },
      [](const char* message, void*) { errors.add(message); }, &uninits);
}

class LoopFailuresGLTest : public LoopGLTest {
 protected:
  void SetUp() override {
    LoopGLTest::SetUp();
    device_ = keep_direct3d(GetParam());
    errors.clear();
    init_fails = false;
    prepareOpenGL();
    // What is made once in a process.
    auto loop = make_recording_loop(8, 6);
    loop->request(1);
    await_returned(1);
    loop.reset();
    inits = 0;
    threads_before_ = thread_count();
  }
  void TearDown() override { finishOpenGL(); }

  void expect_no_thread_left() const {
    const std::size_t most = threads_before_ + 1;  // the system may have one of its own meanwhile
    for (int i = 0; i < 200 && thread_count() > most; ++i) {
      std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    EXPECT_LE(thread_count(), most);
  }

  std::shared_ptr<void> device_;
  std::size_t threads_before_ = 0;
  std::atomic<int> uninits_{0};
};

TEST_P(LoopFailuresGLTest, NoThread) {
  device_.reset();
  finishOpenGL();  // so that a loop starts three: its own, and that of the host
  const std::string reason =
      std::system_error(std::make_error_code(std::errc::resource_unavailable_try_again)).what();
  for (int round = 0; round < 3; ++round) {
    for (int index = 0; index < 4; ++index) {
      SCOPED_TRACE(index);
      const OpenGLControlLoopHandle loop = [&] {
        const ScarceThreads scarce(index);
        return create(uninits_);
      }();
      EXPECT_EQ(loop != nullptr, index >= 2);
      EXPECT_EQ(pending_error(),
                loop ? "(none)" : "The threads of the control loop could not be started: " + reason);
      if (loop) deleteOpenGLControlLoop(loop);
      EXPECT_EQ(inits, round + (index == 3));
    }
  }
  expect_no_thread_left();
  EXPECT_EQ(errors.all(), (std::vector<std::string>{reason, reason, reason}));
}

// Both threads end, and uninit is called, whatever is missing on the way; so with a loop that an error has
// ended.
TEST_P(LoopFailuresGLTest, NoMemoryToDeleteALoop) {
  for (const bool dead : {false, true}) {
    for (const auto extent : {ScarceMemory::that_one_alone, ScarceMemory::from_there_on}) {
      init_fails = dead;
      bool came = true;
      for (std::size_t i = 0; came; ++i) {
        SCOPED_TRACE(i);
        const OpenGLControlLoopHandle loop = create(uninits_);
        ASSERT_NE(loop, nullptr);
        if (dead) errors.at_least(i + 1);
        resizeOpenGLControlLoop(loop, 8, 6);
        renderOpenGLControlLoop(loop);
        {
          const ScarceMemory scarce(i, extent);
          deleteOpenGLControlLoop(loop);
          came = scarce.has_failed();
        }
        expect_no_thread_left();
        EXPECT_EQ(uninits_, dead ? 0 : inits.load());
        EXPECT_EQ(pending_error(), "(none)");
        ASSERT_LT(i, 1000U);
      }
      inits = uninits_ = 0;
      errors.clear();
    }
  }
}

OCT_EVERY_SHARING(LoopFailuresGLTest);

}  // namespace
}  // namespace oct::test
