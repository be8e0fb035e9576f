// Control loops where the system gives no memory or no thread: every such failure once, with a clear error,
// and nobody is kept waiting.
#include <atomic>
#include <cstdlib>
#include <new>
#include <system_error>
#include <thread>

#include "oct_rendering/oct_rendering.h"
#include "support/process_memory.h"
#include "support/test_context.h"
#include "support/test_loop.h"

namespace oct::test {
namespace {

// Counts down to what fails; below zero nothing does.
thread_local int allocations = -1;  // of this thread, so that no driver meets it
thread_local bool later_ones_fail = false;
thread_local bool failed = false;
std::atomic<int> threads{-1};

bool this_one_fails() {
  if (allocations != 0) {
    if (allocations > 0) --allocations;
    return false;
  }
  if (!later_ones_fail) allocations = -1;
  return failed = true;
}

}  // namespace
}  // namespace oct::test

using oct::test::this_one_fails;

void* operator new(std::size_t size) {
  if (this_one_fails()) throw std::bad_alloc();
  if (void* const memory = std::malloc(size > 0 ? size : 1)) return memory;
  throw std::bad_alloc();
}
void operator delete(void* memory) noexcept {
  std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
  std::free(memory);
}

// What std::thread starts threads with; the linker routes it here.
#define OCT_START_THREAD(prefix) \
  prefix##_ZNSt6thread15_M_start_threadESt10unique_ptrINS_6_StateESt14default_deleteIS1_EEPFvvE
extern "C" {
void OCT_START_THREAD(__real_)(std::thread* self, void* state, void (*depend)());
void OCT_START_THREAD(__wrap_)(std::thread* self, void* state, void (*depend)()) {
  if (oct::test::threads >= 0 && oct::test::threads-- == 0) {
    throw std::system_error(std::make_error_code(std::errc::resource_unavailable_try_again));
  }
  OCT_START_THREAD(__real_)(self, state, depend);
}
}

namespace oct::test {
namespace {

Recorded<std::string> errors;
std::atomic<int> inits{0};
std::atomic<int> uninits{0};
bool init_fails = false;

OpenGLControlLoopHandle create() {
  return createOpenGLControlLoopCB(
      [] {
        ++inits;
        if (init_fails) throw std::runtime_error("no more");
      },
      [] { ++uninits; }, [](const char* message) { errors.add(message); });
}

// Lets one allocation of the action fail, of this number, or all from there on. Whether it came so far.
bool fails(int allocation, bool later_ones, const std::function<void()>& action) {
  failed = false;
  later_ones_fail = later_ones;
  allocations = allocation;
  action();
  allocations = -1;
  return failed;
}

class LoopFailuresGLTest : public LoopGLTest {
 protected:
  void SetUp() override {
    LoopGLTest::SetUp();
    errors.clear();
    init_fails = false;
    prepareOpenGL();
    // What is made once in a process.
    OpenGLControlLoopHandle loop = create();
    renderOpenGLControlLoop(loop);
    deleteOpenGLControlLoop(loop);
    inits = uninits = 0;
    threads_before_ = thread_count();
  }
  void TearDown() override { finishOpenGL(); }

  void expect_no_thread_left() const {
    for (int i = 0; i < 200 && thread_count() > threads_before_; ++i) {
      std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    EXPECT_LE(thread_count(), threads_before_);
  }

  std::size_t threads_before_ = 0;
};

TEST_P(LoopFailuresGLTest, NoThread) {
  finishOpenGL();  // so that a loop starts three: its own, and that of the host
  threads_before_ = thread_count();
  const std::string reason =
      std::system_error(std::make_error_code(std::errc::resource_unavailable_try_again)).what();
  for (int index = 0; index < 4; ++index) {
    SCOPED_TRACE(index);
    threads = index;
    const OpenGLControlLoopHandle loop = create();
    threads = -1;
    EXPECT_EQ(loop != nullptr, index >= 2);
    EXPECT_EQ(pending_error(),
              loop ? "(none)" : "The threads of the control loop could not be started: " + reason);
    if (loop) deleteOpenGLControlLoop(loop);
    EXPECT_EQ(inits, index == 3);
    expect_no_thread_left();
  }
  EXPECT_EQ(errors.all(), std::vector<std::string>{reason});
}

TEST_P(LoopFailuresGLTest, NoMemoryToCreateALoop) {
  int failures = 0;
  for (int i = 0;; ++i) {
    OpenGLControlLoopHandle loop = nullptr;
    if (!fails(i, false, [&] { loop = create(); })) {
      deleteOpenGLControlLoop(loop);
      break;
    }
    ++failures;
    EXPECT_EQ(loop, nullptr);
    EXPECT_TRUE(contains(pending_error(), std::bad_alloc().what()));
    expect_no_thread_left();
  }
  EXPECT_GE(failures, 3);
}

// Both threads end, and uninit is called, whatever is missing on the way; so with a loop that an error has
// ended.
TEST_P(LoopFailuresGLTest, NoMemoryToDeleteALoop) {
  for (const bool dead : {false, true}) {
    for (const bool later_ones : {false, true}) {
      init_fails = dead;
      bool came = true;
      for (int i = 0; came; ++i) {
        SCOPED_TRACE(i);
        auto* const loop = reinterpret_cast<OpenGLControlLoop*>(create());
        ASSERT_NE(loop, nullptr);
        if (dead) errors.at_least(static_cast<std::size_t>(inits));
        loop->resize(8, 6);
        loop->request(1);
        came = fails(i, later_ones, [&] { delete loop; });
        expect_no_thread_left();
        EXPECT_EQ(uninits, dead ? 0 : inits.load());
        EXPECT_EQ(pending_error(), "(none)");
        ASSERT_LT(i, 1000);
      }
      inits = uninits = 0;
      errors.clear();
    }
  }
}

// A client that has no memory when it asks for something gets it or an error, and the next call works.
TEST_P(LoopFailuresGLTest, NoMemoryToAskForSomething) {
  auto loop = make_recording_loop(8, 6);
  Picture picture(4, 4);
  const std::function<void()> calls[] = {
      [&] { loop->snapshot(4, 4, picture.bytes.data()); },
      [&] { loop->request(0); },
      [&] { loop->set_mode(OpenGLControlLoop::once_each); },
      [&] { loop->resize(8, 6); },
      [&] {
        loop->set_image_ready_callback(image_ready([this](Index index, void*) { returned_.add(index); }));
      },
  };
  for (const auto& call : calls) {
    for (int i = 0; fails(i, false, [&] { failure_of(call); }); ++i) {
      loop->snapshot(4, 4, picture.bytes.data());
      EXPECT_TRUE(agree(picture, pattern_picture(0, 4, 4), exact));
      ASSERT_LT(i, 1000);
    }
  }
  loop->request(7);
  await_returned(7);
  EXPECT_EQ(errors_.all(), std::vector<std::string>{});
}

OCT_EVERY_SHARING(LoopFailuresGLTest);

}  // namespace
}  // namespace oct::test
