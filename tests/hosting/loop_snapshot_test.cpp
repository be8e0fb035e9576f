// Snapshots of a control loop.
#include <atomic>
#include <future>
#include <set>
#include <system_error>
#include <thread>

#include "support/gl_spy.h"
#include "support/test_context.h"
#include "support/test_loop.h"

namespace oct::test {
namespace {

using namespace std::chrono_literals;
using Ids = std::vector<std::uint32_t>;

class LoopSnapshotGLTest : public LoopGLTest {
 protected:
  // A loop that draws the pattern of one id, whatever it is asked for.
  std::unique_ptr<OpenGLControlLoop> make_pattern_loop(std::uint32_t pattern) {
    auto loop = make_recording_loop(8, 6);
    loop->set_rendering_callback(RenderingCallback([this, pattern](std::uint32_t id) {
      draw_pattern(pattern);
      drawn_.add(id);
    }));
    return loop;
  }

  // A snapshot of 4 by 4 pixels, taken on a thread of its own.
  std::future<void> snapshot_of(OpenGLControlLoop& loop) {
    return std::async(std::launch::async, [this, &loop] { loop.snapshot(4, 4, picture_.bytes.data()); });
  }

  Picture picture_{4, 4};
};

TEST_P(LoopSnapshotGLTest, AModeSetMeanwhileHoldsAfterwardsAndASecondOneDoesNothing) {
  Gate gate;  // the loop's thread may still pass it while the loop ends
  auto loop = make_recording_loop(8, 6);
  loop->set_mode(OpenGLControlLoop::round_robin);
  loop->set_rendering_callback(RenderingCallback([&](std::uint32_t id) {
    draw_pattern(0x112233);
    drawn_.add(id);
    gate.pass();
  }));
  auto snapshot = snapshot_of(*loop);
  gate.await_arrival();
  Picture second(9, 9);
  loop->snapshot(9, 9, second.bytes.data());
  EXPECT_EQ(second.bytes, Picture(9, 9).bytes);
  loop->set_mode(OpenGLControlLoop::once_each);
  EXPECT_EQ(snapshot.wait_for(20ms), std::future_status::timeout);
  gate.open();
  snapshot.get();
  EXPECT_TRUE(agree(picture_, pattern_picture(0x112233, 4, 4), exact));
  // In mode 0 what is queued is drawn once and no more.
  std::this_thread::sleep_for(100ms);
  const std::size_t count = drawn_.all().size();
  std::this_thread::sleep_for(100ms);
  EXPECT_EQ(drawn_.all().size(), count);
  loop->request(8);
  EXPECT_EQ(drawn_.at_least(count + 1).back(), 8U);
}

TEST_P(LoopSnapshotGLTest, FromTheImageReadyFunctionWhileFramesWait) {
  auto loop = make_pattern_loop(0x445566);
  loop->set_image_ready_callback(image_ready([&, first = true](Index index, void*) mutable {
    if (std::exchange(first, false)) {
      drawn_.at_least(3);
      std::this_thread::sleep_for(30ms);  // until the render thread waits for this very frame
      loop->snapshot(4, 4, picture_.bytes.data());
    }
    returned_.add(index);
  }));
  for (int id = 1; id <= 6; ++id) loop->request(id);
  // While a snapshot is on its way the loop may repeat the front of the queue, which then comes twice.
  std::set<std::uint32_t> came;
  for (std::size_t count = 7; came.size() < 7 && count < 12; ++count) {
    const Ids ids = returned_.at_least(count);
    came = {ids.begin(), ids.end()};
  }
  EXPECT_TRUE(agree(picture_, pattern_picture(0x445566, 4, 4), exact));
  EXPECT_EQ(came, (std::set<std::uint32_t>{0, 1, 2, 3, 4, 5, 6}));  // nothing that was asked for is lost
}

// The colour tells when the render function began.
TEST_P(LoopSnapshotGLTest, OfAnySizeAndNothingOlderThanTheCall) {
  std::atomic<std::uint32_t> now{0};
  auto loop = make_recording_loop(4, 4);
  loop->set_rendering_callback(RenderingCallback([&](std::uint32_t) { draw_pattern(now); }));
  loop->set_mode(OpenGLControlLoop::round_robin);
  for (const int id : {-1, 1}) loop->request(id);  // the first draws nothing and is in nobody's way
  for (const auto& [width, height] : {std::pair{1, 1}, {3, 200}, {640, 480}, {20, 10}, {33, 7}}) {
    for (int i = 0; i < 20; ++i) {
      Picture picture(width, height);
      const std::uint32_t colour = now += 0x00010203;
      loop->snapshot(static_cast<std::uint32_t>(width), static_cast<std::uint32_t>(height),
                     picture.bytes.data());
      ASSERT_EQ(picture.bytes, pattern_picture(colour, width, height).bytes) << colour;
    }
  }
}

// What cannot be drawn is told to who asked and leaves the memory alone; what comes next is as ever. A target
// lives no longer than its snapshot.
TEST_P(LoopSnapshotGLTest, WhatCannotBeDrawnSpoilsNothing) {
  const TestContext loads_opengl;
  GlSpy spy;
  std::atomic<bool> mistaken{false};
  auto loop = make_recording_loop(8, 6);
  loop->set_rendering_callback(RenderingCallback([&](std::uint32_t id) {
    draw_pattern(0x778899);
    GLint viewport[4] = {};
    glGetIntegerv(GL_VIEWPORT, viewport);
    if (viewport[2] == 4 && mistaken.exchange(false)) glEnable(GL_RGBA);
    drawn_.add(id);
  }));
  auto draw = [&, id = 0]() mutable {
    loop->request(++id);
    await_returned(static_cast<std::uint32_t>(id));
  };
  for (int i = 0; i < 3; ++i) draw();  // the whole ring
  const std::size_t objects = spy.live_objects();
  const std::string no_target = "Could not generate render target. ";
  const std::string reason = "An error occured when creating render target: ";
  const struct {
    std::uint32_t width, height;
    const char* function;  // that fails
    GLenum error;
    bool mistake;  // of the render function
    std::string message, log;
  } rows[] = {
      {100000, 4, "", 0, false, no_target, reason + "A numeric argument is out of range."},
      {4, 0x7FFFFFFF, "", 0, false, no_target, reason + "A numeric argument is out of range."},
      {4, 4, "glRenderbufferStorage", GL_OUT_OF_MEMORY, false, no_target,
       reason + "There is not enough memory"},
      {4, 4, "glGenFramebuffers", 0, false, no_target, reason},
      {4, 4, "glCheckFramebufferStatus", GL_FRAMEBUFFER_UNSUPPORTED, false, no_target,
       reason + "GL_FRAMEBUFFER_UNSUPPORTED"},
      {4, 4, "", 0, true, "An OpenGL error in the snapshot occured: An unacceptable value", ""},
      {0, 0, "", 0, false, "(none)", ""},
      {4, 0, "", 0, false, "(none)", ""},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.message + row.log);
    mistaken = row.mistake;
    if (*row.function) spy.fail_next(row.function, 1, row.error);
    Picture untouched(4, 4);
    const std::string text = log_of([&] {
      const std::string message =
          failure_of([&] { loop->snapshot(row.width, row.height, untouched.bytes.data()); });
      EXPECT_EQ(message.substr(0, row.message.size()), row.message);
    });
    EXPECT_TRUE(contains(text, row.log)) << text;
    EXPECT_EQ(untouched.bytes, Picture(4, 4).bytes);
    EXPECT_EQ(spy.live_objects(), objects);
    draw();
    loop->snapshot(4, 4, picture_.bytes.data());
    EXPECT_TRUE(agree(picture_, pattern_picture(0x778899, 4, 4), exact));
    EXPECT_EQ(spy.live_objects(), objects);
  }
  spy.answer(GL_MAX_VIEWPORT_DIMS, 3);
  EXPECT_EQ(failure_of([&] { loop->snapshot(4, 2, picture_.bytes.data()); }), no_target);
  loop->resize(8, 0);
  EXPECT_EQ(failure_of([&] { loop->snapshot(4, 4, picture_.bytes.data()); }),
            "A control loop without a size takes no snapshots. ");
  EXPECT_EQ(errors_.all(), std::vector<std::string>{});
}

// Deletion waits for the return thread, and that one for a picture that nobody draws any more.
TEST_P(LoopSnapshotGLTest, FromTheImageReadyFunctionDuringDeletion) {
  auto loop = make_recording_loop(8, 6);
  std::promise<void> shown;
  loop->set_image_ready_callback(image_ready([&, snap = loop.get(), first = true](Index, void*) mutable {
    if (!std::exchange(first, false)) return;
    shown.set_value();
    std::this_thread::sleep_for(30ms);
    std::string message;
    while (message.empty() || message == "(none)") {
      message = failure_of([&] { snap->snapshot(4, 4, picture_.bytes.data()); });
    }
    errors_.add(message);
  }));
  loop->request(1);
  shown.get_future().wait();
  loop.reset();
  EXPECT_EQ(errors_.all(), std::vector<std::string>{"The control loop is being deleted. "});
}

TEST_P(LoopSnapshotGLTest, DeletionLetsARunningOneFinish) {
  auto loop = make_recording_loop(8, 6);
  std::promise<void> in_frame;
  loop->set_rendering_callback(RenderingCallback([&, first = true](std::uint32_t) mutable {
    if (std::exchange(first, false)) in_frame.set_value();
    std::this_thread::sleep_for(30ms);
    draw_pattern(0x00FF7F);
  }));
  auto snapshot = snapshot_of(*loop);
  in_frame.get_future().wait();
  loop.reset();
  snapshot.get();
  EXPECT_TRUE(agree(picture_, pattern_picture(0x00FF7F, 4, 4), exact));
}

TEST_P(LoopSnapshotGLTest, ManyClientsAtOnce) {
  auto loop = make_pattern_loop(0x0000FE);
  std::atomic<int> pictures{0};
  on_threads(5, [&](int i) {
    for (int round = 1; round < 60; ++round) {
      if (i == 4) {
        loop->request(round);
        loop->set_mode(round % 2 ? OpenGLControlLoop::round_robin : OpenGLControlLoop::once_each);
      } else if (round % 4 == 0) {
        Picture picture(4 + i, 5);
        loop->snapshot(static_cast<std::uint32_t>(4 + i), 5, picture.bytes.data());
        if (picture.bytes[3] == 0) continue;  // another one was running
        ++pictures;
        EXPECT_TRUE(agree(picture, pattern_picture(0x0000FE, 4 + i, 5), exact));
      }
    }
  });
  EXPECT_GT(pictures, 0);
}

OCT_EVERY_SHARING(LoopSnapshotGLTest);

}  // namespace
}  // namespace oct::test
