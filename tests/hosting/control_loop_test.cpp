// Scheduling of the control loop, its callbacks and its end.
#include <atomic>
#include <future>
#include <set>
#include <system_error>
#include <thread>

#include "gl/context/current_context.h"
#include "support/test_context.h"
#include "support/test_loop.h"

namespace oct::test {
namespace {

using namespace std::chrono_literals;
using Ids = std::vector<std::uint32_t>;
using Names = std::vector<std::string>;

class ControlLoopGLTest : public LoopGLTest {
 protected:
  // A loop that is held in its first frame, of this id, so that requests gather.
  std::unique_ptr<OpenGLControlLoop> makeHeldLoop(int id) {
    auto loop = makeRecordingLoop(8, 6);
    loop->set_rendering_callback(rendering([this](std::uint32_t drawn) {
      drawn_.add(drawn);
      gate_.pass();
    }));
    loop->request(id);
    gate_.awaitArrival();
    return loop;
  }

  // Opens the loop; it draws these frames first.
  void expectDrawn(const Ids& expected) {
    gate_.open();
    Ids ids = drawn_.atLeast(expected.size());
    ids.resize(expected.size());
    EXPECT_EQ(ids, expected);
  }

  std::unique_ptr<OpenGLControlLoop> makeFailingLoop() {
    auto loop = makeRecordingLoop(8, 6);
    loop->set_rendering_callback(rendering([](std::uint32_t) { throw std::runtime_error("no more"); }));
    return loop;
  }

  Gate gate_;
};

TEST_P(ControlLoopGLTest, DrawsAndReturnsEveryRequestOnce) {
  auto loop = makeRecordingLoop(8, 6);
  for (const std::uint32_t id : {4U, 2U, 9U}) {
    const std::size_t before = returned_.all().size();
    loop->request(static_cast<int>(id));
    EXPECT_EQ(returned_.atLeast(before + 1).back(), id);
  }
  std::this_thread::sleep_for(30ms);
  EXPECT_EQ(drawn_.all(), (Ids{4, 2, 9}));
  EXPECT_EQ(returned_.all(), (Ids{4, 2, 9}));
}

TEST_P(ControlLoopGLTest, TenEqualRequestsAreOneFrame) {
  auto loop = makeHeldLoop(1);
  for (int i = 0; i < 10; ++i) loop->request(7);
  expectDrawn({1, 7});
  std::this_thread::sleep_for(50ms);
  EXPECT_EQ(drawn_.all(), (Ids{1, 7}));
}

TEST_P(ControlLoopGLTest, WithoutSizeRequestsAreLost) {
  auto loop = makeRecordingLoop(0, 6);
  loop->request(1);
  std::this_thread::sleep_for(30ms);
  loop->resize(6, 0);
  loop->request(2);
  std::this_thread::sleep_for(30ms);
  loop->resize(6, 6);
  std::this_thread::sleep_for(30ms);
  EXPECT_EQ(drawn_.all(), Ids{});
  loop->request(3);
  EXPECT_EQ(returned_.atLeast(1), Ids{3});
}

TEST_P(ControlLoopGLTest, RoundRobinForEver) {
  auto loop = makeHeldLoop(9);
  for (const int id : {0, 3, 5}) loop->request(id);
  loop->set_mode(OpenGLControlLoop::roundRobin);
  expectDrawn({9, 0, 3, 5, 0, 3, 5, 0, 3, 5});
}

// Other values wait as mode 0 does and go round as mode 1.
TEST_P(ControlLoopGLTest, AnyOtherModeGoesRoundToo) {
  auto loop = makeHeldLoop(9);
  for (const int id : {1, 2}) loop->request(id);
  loop->set_mode(static_cast<OpenGLControlLoop::Mode>(77));
  expectDrawn({9, 1, 2, 1, 2});
}

TEST_P(ControlLoopGLTest, ModeTwoRepeatsTheFrontAndHoldsNobodyUp) {
  auto loop = makeHeldLoop(9);
  for (const int id : {4, 6}) loop->request(id);
  loop->set_mode(OpenGLControlLoop::snapshotMode);
  expectDrawn({9, 4, 4, 4});
  Picture picture(8, 6);
  loop->snapshot(8, 6, picture.bytes.data());  // returns: another is running, as far as the loop can tell
  EXPECT_EQ(picture.bytes, Picture(8, 6).bytes);
}  // and the loop can be deleted

// Round robin with nothing to do, then mode 0: the render thread must not keep the mutex of the mode while it
// waits.
TEST_P(ControlLoopGLTest, ModeChangesOfAnIdleLoop) {
  auto loop = makeRecordingLoop(8, 6);
  for (int i = 0; i < 200; ++i) {
    loop->set_mode(OpenGLControlLoop::roundRobin);
    if (i % 3 == 0) std::this_thread::yield();
    loop->set_mode(OpenGLControlLoop::onceEach);
  }
  Picture picture(3, 3);
  loop->snapshot(3, 3, picture.bytes.data());
  EXPECT_TRUE(agree(picture, patternPicture(0, 3, 3), exact));
}

TEST_P(ControlLoopGLTest, BuffersRotate) {
  Recorded<void*> recorded;
  auto loop = makeRecordingLoop(8, 6);
  loop->set_image_ready_callback(imageReady([&](Index, void* surface) { recorded.add(surface); }));
  for (int id = 1; id <= 7; ++id) {
    loop->request(id);
    recorded.atLeast(static_cast<std::size_t>(id));
  }
  const auto surfaces = recorded.all();
  ASSERT_EQ(surfaces.size(), 7U);
  EXPECT_EQ(std::set<void*>(surfaces.begin(), surfaces.begin() + 3).size(), 3U);
  for (std::size_t i = 3; i < 7; ++i) EXPECT_EQ(surfaces[i], surfaces[i - 3]);
}

TEST_P(ControlLoopGLTest, PixelsFollowTheSize) {
  Recorded<Picture> pictures;
  auto loop = makeRecordingLoop(8, 6);
  loop->set_image_ready_callback(
      imageReady([&](Index, std::uint32_t width, std::uint32_t height, void* surface) {
        Picture picture = surfacePicture(GetParam(), surface);
        EXPECT_EQ(picture.width, static_cast<int>(width));
        EXPECT_EQ(picture.height, static_cast<int>(height));
        pictures.add(std::move(picture));
      }));
  int id = 0x123450;
  for (const auto& [width, height] : {std::pair{8, 6}, {8, 6}, {31, 17}, {1, 1}, {640, 480}, {7, 100}}) {
    loop->resize(static_cast<std::uint32_t>(width), static_cast<std::uint32_t>(height));
    loop->request(++id);
    const Picture last = pictures.atLeast(static_cast<std::size_t>(id - 0x123450)).back();
    EXPECT_TRUE(agree(last, patternPicture(static_cast<std::uint32_t>(id), width, height), exact));
  }
}

TEST_P(ControlLoopGLTest, WithoutRenderFunctionATestImage) {
  Recorded<Picture> pictures;
  auto loop = makeLoop();
  loop->set_mode(OpenGLControlLoop::onceEach);
  loop->resize(64, 64);
  loop->set_image_ready_callback(
      imageReady([&](Index, void* surface) { pictures.add(surfacePicture(GetParam(), surface)); }));
  loop->request(0);
  const auto first = pictures.atLeast(1);
  ASSERT_EQ(first.size(), 1U);
  EXPECT_EQ(first[0].bgra(0, 63), (std::array<int, 4>{0, 255, 255, 255}));  // yellow
  const std::uint8_t* const centre = first[0].pixel(32, 32);
  for (int c = 0; c < 3; ++c) EXPECT_NEAR(centre[c], 85, 12);  // the three colours mixed
  loop->request(0);
  EXPECT_NE(pictures.atLeast(2).back().bytes, first[0].bytes);  // it turns
}

TEST_P(ControlLoopGLTest, CallbacksCanBeExchanged) {
  auto loop = makeRecordingLoop(8, 6);
  loop->request(1);
  returned_.atLeast(1);
  loop->set_rendering_callback(rendering([this](std::uint32_t id) { drawn_.add(id + 100); }));
  loop->set_image_ready_callback(imageReady([this](Index index, void*) { returned_.add(index + 200); }));
  loop->request(3);
  EXPECT_EQ(returned_.atLeast(2), (Ids{1, 203}));
  EXPECT_EQ(drawn_.all(), (Ids{1, 103}));
}

TEST_P(ControlLoopGLTest, InitAndUninitOnTheRenderThread) {
  std::vector<std::string> order;  // guarded by what is tested: uninit follows the return thread's end
  std::thread::id init, draw, uninit;
  const auto note = [&](const char* what, std::thread::id& id) {
    order.push_back(what);
    id = std::this_thread::get_id();
    EXPECT_NE(glGetString(GL_VERSION), nullptr) << what;
  };
  auto loop = std::make_unique<OpenGLControlLoop>(functor([&] { note("init", init); }),
                                                  functor([&] { note("uninit", uninit); }));
  loop->set_rendering_callback(rendering([&](std::uint32_t) { note("draw", draw); }));
  loop->set_image_ready_callback(imageReady([&](Index index, void*) {
    returned_.add(index);
    std::this_thread::sleep_for(50ms);  // the loop is being deleted meanwhile
    order.push_back("ready");
  }));
  loop->set_mode(OpenGLControlLoop::onceEach);
  loop->resize(4, 4);
  loop->request(1);
  returned_.atLeast(1);
  loop.reset();
  EXPECT_EQ(order, (std::vector<std::string>{"init", "draw", "ready", "uninit"}));
  EXPECT_EQ(init, draw);
  EXPECT_EQ(draw, uninit);
  EXPECT_NE(init, std::this_thread::get_id());
}

TEST_P(ControlLoopGLTest, AFailingRenderFunctionEndsTheRenderThreadOnly) {
  auto loop = makeFailingLoop();
  loop->request(1);
  EXPECT_EQ(errors_.atLeast(1), std::vector<std::string>{"no more"});
  loop->request(2);
  Picture picture(2, 2);
  EXPECT_THROW(loop->snapshot(2, 2, picture.bytes.data()), std::runtime_error);
  loop->set_mode(OpenGLControlLoop::roundRobin);
  EXPECT_EQ(returned_.all(), Ids{});
}

TEST_P(ControlLoopGLTest, ASnapshotOfAFailingLoopReturns) {
  auto loop = makeFailingLoop();
  Picture picture(2, 2);
  EXPECT_THROW(loop->snapshot(2, 2, picture.bytes.data()), std::runtime_error);
  EXPECT_EQ(errors_.atLeast(1), std::vector<std::string>{"no more"});
}

TEST_P(ControlLoopGLTest, ThrowingInit) {
  bool uninit = false;
  {
    OpenGLControlLoop loop(functor([] { throw std::runtime_error("no init"); }),
                           functor([&] { uninit = true; }),
                           ErrorCallback([&](const char* text) { errors_.add(text); }));
    EXPECT_EQ(errors_.atLeast(1), std::vector<std::string>{"no init"});
  }
  EXPECT_FALSE(uninit);
  const OpenGLControlLoop loop(functor([] { throw 42; }));  // no std::exception
}

TEST_P(ControlLoopGLTest, DeletionWhileFramesWait) {
  auto loop = makeRecordingLoop(8, 6);
  std::atomic<int> returns{0};
  loop->set_image_ready_callback(imageReady([&](Index, void*) {
    ++returns;
    gate_.pass();
  }));
  for (int id = 1; id <= 6; ++id) loop->request(id);
  gate_.awaitArrival();
  drawn_.atLeast(3);  // two wait in the return map
  auto deletion = std::async(std::launch::async, [&] { loop.reset(); });
  EXPECT_EQ(deletion.wait_for(50ms), std::future_status::timeout);
  const int before = returns;
  gate_.open();
  deletion.get();
  EXPECT_EQ(before, 1);
  EXPECT_LE(returns, 2);  // one may have begun before the deletion
}

// The render thread is at most three frames ahead of a client that keeps a frame.
TEST_P(ControlLoopGLTest, NothingIsDrawnIntoABufferThatTheClientHolds) {
  auto loop = makeRecordingLoop(8, 6);
  loop->set_image_ready_callback(imageReady([&](Index index, void* surface) {
    gate_.pass();
    EXPECT_TRUE(agree(surfacePicture(GetParam(), surface), patternPicture(index, 8, 6), exact));
    returned_.add(index);
  }));
  for (int id = 1; id <= 9; ++id) loop->request(id);
  gate_.awaitArrival();
  drawn_.atLeast(3);
  std::this_thread::sleep_for(50ms);
  EXPECT_EQ(drawn_.all(), (Ids{1, 2, 3}));
  gate_.open();
  EXPECT_EQ(returned_.atLeast(9), (Ids{1, 2, 3, 4, 5, 6, 7, 8, 9}));
}

// From each of them; the loop goes on, as the order of the later ones shows.
TEST_P(ControlLoopGLTest, DeletionFromItsOwnThreadsIsRefused) {
  for (const bool fails : {false, true}) {
    std::promise<const OpenGLControlLoop*> made;
    Recorded<std::string> refused;
    const auto attempt = [&, loop = made.get_future().share()](const char* where) {
      try {
        loop.get()->check_deletable();
      } catch (const std::system_error& error) {
        EXPECT_EQ(error.code(), std::errc::resource_deadlock_would_occur);
        refused.add(where);
      }
    };
    {
      OpenGLControlLoop loop(functor([&] { attempt("init"); }), functor([&] { attempt("uninit"); }),
                             ErrorCallback([&](const char*) { attempt("error"); }));
      loop.set_rendering_callback(rendering([&](std::uint32_t) {
        attempt("draw");
        if (fails) throw std::runtime_error("no more");
      }));
      loop.set_image_ready_callback(imageReady([&](Index, void*) { attempt("ready"); }));
      made.set_value(&loop);
      loop.check_deletable();
      loop.set_mode(OpenGLControlLoop::onceEach);
      loop.resize(4, 4);
      loop.request(1);
      refused.atLeast(3);
    }
    Names expected{"init", "draw", "ready", "uninit"};
    if (fails) expected = {"init", "draw", "error"};
    EXPECT_EQ(refused.all(), expected);
  }
}

TEST_P(ControlLoopGLTest, AFailedLoopIsDeletedBesideTheCallersContext) {
  TestContext context;
  void* const before = gl::currentContext();
  auto loop = makeFailingLoop();
  loop->request(1);
  errors_.atLeast(1);
  loop.reset();
  EXPECT_EQ(gl::currentContext(), before);
}

OCT_EVERY_SHARING(ControlLoopGLTest);

}  // namespace
}  // namespace oct::test
