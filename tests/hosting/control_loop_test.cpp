// Scheduling of the control loop, its callbacks and its end.
#include <atomic>
#include <future>
#include <random>
#include <set>
#include <system_error>
#include <thread>

#include "gl/context/current_context.h"
#include "support/mark_recorder.h"
#include "support/process_memory.h"
#include "support/test_context.h"
#include "support/test_loop.h"

namespace oct::test {
namespace {

using namespace std::chrono_literals;
using Ids = std::vector<std::uint32_t>;
using Names = std::vector<std::string>;

class ControlLoopGLTest : public LoopGLTest {
 protected:
  Gate gate_;
};

// Requests gather while the first frame, of id 9, is held up.
TEST_P(ControlLoopGLTest, ModesDecideWhatIsDrawnNext) {
  using Mode = OpenGLControlLoop::Mode;
  const auto device = keep_direct3d(GetParam());
  const struct {
    Mode mode;
    std::vector<int> requests;
    Ids drawn;  // at first
  } rows[] = {
      {Mode::once_each, {7, 7, 8, 7}, {9, 7, 8}},
      {Mode::round_robin, {0, 3, 5}, {9, 0, 3, 5, 0, 3, 5, 0, 3, 5}},
      {static_cast<Mode>(77),
       {1, 2},
       {9, 1, 2, 1, 2}},  // other values wait as mode 0 does and go round as mode 1
      {Mode::snapshot_mode, {4, 6}, {9, 4, 4, 4}},
  };
  for (const auto& row : rows) {
    Gate gate;
    drawn_.clear();
    auto loop = make_recording_loop(8, 6);
    loop->set_rendering_callback(RenderingCallback([&](std::uint32_t drawn) {
      drawn_.add(drawn);
      gate.pass();
    }));
    loop->request(9);
    gate.await_arrival();
    for (const int id : row.requests) loop->request(id);
    loop->set_mode(row.mode);
    gate.open();
    Ids ids = drawn_.at_least(row.drawn.size());
    if (row.mode == OpenGLControlLoop::once_each) {
      std::this_thread::sleep_for(50ms);
      ids = drawn_.all();
    } else {
      ids.resize(row.drawn.size());
    }
    EXPECT_EQ(ids, row.drawn) << static_cast<int>(row.mode);
    if (row.mode != OpenGLControlLoop::snapshot_mode) continue;
    Picture picture(8, 6);
    loop->snapshot(8, 6, picture.bytes.data());  // returns: another is running, as far as the loop can tell
    EXPECT_EQ(picture.bytes, Picture(8, 6).bytes);
  }  // and every loop can be deleted
}

TEST_P(ControlLoopGLTest, WithoutSizeRequestsAreLost) {
  auto loop = make_recording_loop(0, 6);
  for (const std::uint32_t height : {0U, 6U}) {
    loop->request(1);
    std::this_thread::sleep_for(30ms);
    loop->resize(6, height);
  }
  std::this_thread::sleep_for(30ms);
  EXPECT_EQ(drawn_.all(), Ids{});
  loop->set_image_ready_callback(image_ready([&](Index index, void*) {
    gate_.pass();
    returned_.add(index);
  }));
  for (int id = 3; id <= 6; ++id) loop->request(id);
  gate_.await_arrival();
  drawn_.at_least(3);
  std::this_thread::sleep_for(30ms);  // until the render thread waits for a buffer to draw the last one into
  loop->resize(6, 0);
  gate_.open();
  EXPECT_EQ(returned_.at_least(3), (Ids{3, 4, 5}));
  loop->resize(6, 6);
  loop->request(7);
  await_returned(7);
  EXPECT_EQ(errors_.all(), Names{});
}

// Without a size, or with nothing but ids that draw nothing, there is nothing to do in any mode.
TEST_P(ControlLoopGLTest, AnIdleLoopSleepsAndIsWokenAtOnce) {
  using Mode = OpenGLControlLoop::Mode;
  const auto device = keep_direct3d(GetParam());
  MarkRecorder recorder;
  const auto iterations = [&] {
    std::ptrdiff_t count = 0;
    for (const auto& [thread, marks] : recorder.all()) {
      count += std::count(marks.begin(), marks.end(), "+rendering_loop_it_incl");
    }
    return count;
  };
  for (const Mode mode : {Mode::once_each, Mode::round_robin, Mode::snapshot_mode, static_cast<Mode>(77)}) {
    for (const bool sized : {false, true}) {
      SCOPED_TRACE(static_cast<int>(mode) + (sized ? 100 : 0));
      returned_.clear();
      auto loop = make_recording_loop(sized ? 8 : 0, 6);
      for (int i = 0; i < 50; ++i) {  // the render thread must not keep the mutex of the mode while it waits
        loop->set_mode(OpenGLControlLoop::round_robin);
        if (i % 3 == 0) std::this_thread::yield();
        loop->set_mode(OpenGLControlLoop::once_each);
      }
      loop->set_mode(mode);
      loop->request(sized ? -1 : 4);
      std::this_thread::sleep_for(20ms);
      const auto before = iterations();
      std::this_thread::sleep_for(30ms);
      EXPECT_LE(iterations(), before + 3);
      if (mode != Mode::once_each && !sized) {
        loop->resize(8, 6);
        EXPECT_EQ(returned_.at_least(1).at(0), 4U);
      } else if (mode == Mode::round_robin) {
        Picture picture(3, 3);
        loop->snapshot(3, 3, picture.bytes.data());
        EXPECT_EQ(returned_.at_least(1).at(0), 0U);
      } else if (sized) {
        loop->request(9);
        EXPECT_EQ(returned_.at_least(1).at(0), 9U);
      }
    }  // and is deleted at once
  }
}

// With two ids in mode 1 and a client that is slower than the loop.
TEST_P(ControlLoopGLTest, SlowClientsGetAllIdsInTurn) {
  auto loop = make_recording_loop(8, 6);
  loop->set_image_ready_callback(image_ready([&](Index index, void*) {
    std::this_thread::sleep_for(3ms);
    returned_.add(index);
  }));
  // Before the requests: in the mode before an id that is drawn is forgotten.
  loop->set_mode(OpenGLControlLoop::round_robin);
  for (const int id : {0, 5}) loop->request(id);
  const Ids ids = returned_.at_least(30);
  for (const std::uint32_t id : {0U, 5U}) EXPECT_GE(std::count(ids.begin(), ids.end(), id), 10) << id;
}

// A function of the client may leave another context current, or none.
TEST_P(ControlLoopGLTest, TheContextIsBackAfterEveryFunctionOfTheClient) {
  std::unique_ptr<TestContext> other;  // of the render thread
  bool none = false;
  const auto take_away = [&] {
    none = !none;
    other.reset();
    other = std::make_unique<TestContext>();
    if (none) other.reset();
  };
  std::set<void*> contexts;
  const auto note = [&] {
    contexts.insert(gl::current_context());
    take_away();
  };
  auto loop = std::make_unique<OpenGLControlLoop>(
      Callback(note), Callback(note), ErrorCallback([&](const char* message) { errors_.add(message); }));
  loop->set_mode(OpenGLControlLoop::once_each);
  loop->resize(8, 6);
  loop->set_rendering_callback(RenderingCallback([&](std::uint32_t id) {
    draw_pattern(id);
    note();
  }));
  loop->set_image_ready_callback(image_ready([&](Index index, void* surface) {
    EXPECT_TRUE(agree(surface_picture(GetParam(), surface), pattern_picture(index, 8, 6), exact));
    returned_.add(index);
  }));
  for (std::uint32_t id = 1; id <= 5; ++id) {
    loop->request(static_cast<int>(id));
    await_returned(id);
    Picture picture(4, 5);
    if (id % 2) continue;
    loop->snapshot(4, 5, picture.bytes.data());
    EXPECT_TRUE(agree(picture, pattern_picture(0, 4, 5), exact));
  }
  loop.reset();
  EXPECT_EQ(contexts.size(), 1U);
  EXPECT_EQ(contexts.count(nullptr), 0U);
  EXPECT_EQ(errors_.all(), Names{});
}

TEST_P(ControlLoopGLTest, BuffersRotateAndPixelsFollowTheSize) {
  Recorded<std::pair<void*, Picture>> frames;
  auto loop = make_recording_loop(8, 6);
  loop->set_image_ready_callback(
      ImageReadyCallback([&](Index, std::uint32_t width, std::uint32_t height, void* surface) {
        Picture picture = surface_picture(GetParam(), surface);
        EXPECT_EQ(picture.width, static_cast<int>(width));
        EXPECT_EQ(picture.height, static_cast<int>(height));
        frames.add({surface, std::move(picture)});
      }));
  std::vector<std::pair<int, int>> sizes(7, {8, 6});
  sizes.insert(sizes.end(), {{31, 6}, {8, 17}, {1, 1}, {640, 480}, {7, 100}});
  for (std::size_t i = 0; i < sizes.size(); ++i) {
    const auto [width, height] = sizes[i];
    const auto id = 0x123450 + static_cast<int>(i);
    loop->resize(static_cast<std::uint32_t>(width), static_cast<std::uint32_t>(height));
    loop->request(id);
    const Picture last = frames.at_least(i + 1).back().second;
    EXPECT_TRUE(agree(last, pattern_picture(static_cast<std::uint32_t>(id), width, height), exact));
  }
  const auto all = frames.all();
  ASSERT_EQ(all.size(), sizes.size());
  EXPECT_EQ((std::set<void*>{all[0].first, all[1].first, all[2].first}).size(), 3U);
  for (std::size_t i = 3; i < 7; ++i) EXPECT_EQ(all[i].first, all[i - 3].first);
}

// What either thread would wait for itself with, or for the other, which may wait for it, is refused.
TEST_P(ControlLoopGLTest, InitAndUninitOnTheRenderThread) {
  Names order;  // guarded by what is tested: uninit follows the return thread's end
  std::set<std::thread::id> threads;
  std::promise<OpenGLControlLoop*> made;
  const std::string refusal =
      std::system_error(std::make_error_code(std::errc::resource_deadlock_would_occur)).what();
  const auto expect_refusals = [&, own = made.get_future().share()] {
    EXPECT_EQ(failure_of([&] { own.get()->end(); }), refusal);
    EXPECT_EQ(failure_of([&] { own.get()->set_image_ready_callback({}); }), refusal);
    EXPECT_EQ(failure_of([&] { own.get()->set_rendering_callback(nullptr); }), refusal);
    return own.get();
  };
  const auto note = [&](const char* what) {
    auto* const own = expect_refusals();
    Picture picture(4, 4);
    EXPECT_EQ(failure_of([&] { own->snapshot(4, 4, picture.bytes.data()); }), refusal);
    order.push_back(what);
    threads.insert(std::this_thread::get_id());
    EXPECT_NE(glGetString(GL_VERSION), nullptr) << what;
  };
  auto loop =
      std::make_unique<OpenGLControlLoop>(Callback([&] { note("init"); }), Callback([&] { note("uninit"); }));
  loop->set_rendering_callback(RenderingCallback([&](std::uint32_t) { note("draw"); }));
  loop->set_image_ready_callback(image_ready([&](Index index, void*) {
    returned_.add(index);
    expect_refusals();
    std::this_thread::sleep_for(50ms);  // the loop is being deleted meanwhile
    order.push_back("ready");
  }));
  loop->set_mode(OpenGLControlLoop::once_each);
  made.set_value(loop.get());
  loop->resize(4, 4);
  loop->request(1);
  returned_.at_least(1);
  const std::string text = log_of([&] { loop.reset(); });
  EXPECT_EQ(order, (Names{"init", "draw", "ready", "uninit"}));
  EXPECT_EQ(threads.size(), 1U);
  EXPECT_FALSE(threads.contains(std::this_thread::get_id()));
  const std::size_t finished = text.find("Rendering loop finished. \n");
  EXPECT_NE(finished, std::string::npos) << text;
  EXPECT_NE(text.find("background thread successfully joined. \n", finished), std::string::npos) << text;
}

// Wherever it fails, nobody is kept waiting, and deletion leaves the caller's context current.
TEST_P(ControlLoopGLTest, AFailureEndsTheRenderThreadOnly) {
  for (const std::string where : {"init", "unknown", "frame", "snapshot"}) {
    SCOPED_TRACE(where);
    const bool unknown = where == "unknown";  // no std::exception
    const TestContext context;
    void* const before = gl::current_context();
    errors_.clear();
    std::promise<OpenGLControlLoop*> made;
    const std::string text = log_of([&] {
      const auto init = [&] {
        if (unknown) throw 42;
        if (where == "init") throw std::runtime_error("no more");
      };
      OpenGLControlLoop loop(Callback(init), Callback([] { ADD_FAILURE() << "uninit"; }),
                             ErrorCallback([&](const char* message) {
                               EXPECT_THROW(made.get_future().get()->end(), std::system_error);
                               // The last place to uninitialise renderers.
                               EXPECT_NE(glGetString(GL_VERSION), nullptr);
                               errors_.add(message);
                             }));
      made.set_value(&loop);
      loop.set_rendering_callback(
          RenderingCallback([](std::uint32_t) { throw std::runtime_error("no more"); }));
      loop.set_image_ready_callback(image_ready([](Index, void*) { ADD_FAILURE() << "frame"; }));
      loop.set_mode(OpenGLControlLoop::once_each);
      loop.resize(8, 6);
      if (where != "snapshot") loop.request(1);
      if (where == "frame") errors_.at_least(1);
      Picture picture(2, 2);
      std::set<std::string> possible;  // during init either
      if (where == "snapshot" || where == "init") possible.insert("no more");
      if (where != "snapshot") possible.insert("The rendering thread of the control loop has ended. ");
      const std::string message = failure_of([&] { loop.snapshot(2, 2, picture.bytes.data()); });
      EXPECT_TRUE(possible.contains(message)) << message;
      if (!unknown) errors_.at_least(1);
      loop.request(2);
      loop.set_mode(OpenGLControlLoop::round_robin);
    });
    EXPECT_EQ(errors_.all(), unknown ? Names{} : Names{"no more"});
    EXPECT_TRUE(contains(text, unknown ? "Rendering loop, unknown error.\n" : "Rendering loop: no more\n"))
        << text;
    EXPECT_FALSE(contains(text, "Rendering loop finished. ")) << text;
    EXPECT_EQ(gl::current_context(), before);
  }
}

TEST_P(ControlLoopGLTest, DeletionWhileFramesWait) {
  auto loop = make_recording_loop(8, 6);
  std::atomic<int> returns{0};
  loop->set_image_ready_callback(image_ready([&](Index, void*) {
    ++returns;
    gate_.pass();
  }));
  for (int id = 1; id <= 6; ++id) loop->request(id);
  gate_.await_arrival();
  drawn_.at_least(3);  // two wait in the return map
  std::this_thread::sleep_for(50ms);
  EXPECT_EQ(drawn_.all(), (Ids{1, 2, 3})) << "no further ahead of a client that keeps a frame";
  auto deletion = std::async(std::launch::async, [&] { loop.reset(); });
  EXPECT_EQ(deletion.wait_for(50ms), std::future_status::timeout);
  const int before = returns;
  gate_.open();
  deletion.get();
  EXPECT_EQ(before, 1);
  EXPECT_LE(returns, 2);  // one may have begun before the deletion
}

// Many frames through the ring, with a client that is slow now and then.
TEST_P(ControlLoopGLTest, FramesArriveInOrderWithTheirPixels) {
  // Sanitizers are slow; a surface of Direct3D even more so, and its ring takes the same way.
  const std::uint32_t slow_count = GetParam() == SurfaceSharing::host_memory ? 1000 : 110;
  const std::uint32_t count =
      measures_memory && GetParam() == SurfaceSharing::host_memory ? 10000 : slow_count;
  auto loop = make_recording_loop(12, 9);
  loop->set_rendering_callback(RenderingCallback([](std::uint32_t id) { draw_pattern(id * 1667); }));
  std::mt19937 random(1);
  std::uint32_t came = 0;
  int wrong = 0;
  loop->set_image_ready_callback(image_ready([&](Index index, void* surface) {
    if (random() % 200 == 0) std::this_thread::sleep_for(std::chrono::microseconds(random() % 5000));
    // After the stall, in which a render thread that does not keep off would have drawn over the frame.
    const Picture picture = surface_picture(GetParam(), surface);
    wrong += index != ++came || picture.bytes != pattern_picture(index * 1667, 12, 9).bytes;
    if (index == count || wrong >= 100) returned_.add(index);
  }));
  for (std::uint32_t id = 1; id <= count; ++id) loop->request(static_cast<std::int32_t>(id));
  for (int patience = 0; patience < 24 && returned_.all().empty() && errors_.all().empty(); ++patience) {
    returned_.at_least(1);
  }
  EXPECT_EQ(errors_.all(), Names{});
  loop.reset();
  EXPECT_EQ(wrong, 0);
  EXPECT_EQ(came, count);
}

OCT_EVERY_SHARING(ControlLoopGLTest);

TEST(ImageReadyCallbackTest, AnEmptyOneIsLogged) {
  EXPECT_EQ(log_of([] { ImageReadyCallback{nullptr}(1, 2, 3, nullptr); }),
            "Warning: returning image withoug callback being specified. \n");
}

}  // namespace
}  // namespace oct::test
