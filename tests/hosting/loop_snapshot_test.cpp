// Snapshots of a control loop.
#include <atomic>
#include <future>
#include <set>
#include <system_error>
#include <thread>

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

TEST_P(LoopSnapshotGLTest, AnySizeWhileTheLoopDraws) {
  auto loop = make_pattern_loop(0x00AB12CD);
  loop->set_mode(OpenGLControlLoop::round_robin);
  loop->request(-1);  // draws nothing and is in nobody's way
  std::uint8_t byte = 77;
  loop->snapshot(0, 0, &byte);
  EXPECT_EQ(byte, 77);
  loop->request(5);
  for (const auto& [width, height] : {std::pair{1, 1}, {3, 200}, {640, 480}, {20, 10}, {33, 7}}) {
    Picture picture(width, height);
    loop->snapshot(static_cast<std::uint32_t>(width), static_cast<std::uint32_t>(height),
                   picture.bytes.data());
    EXPECT_TRUE(agree(picture, pattern_picture(0x00AB12CD, width, height), exact));
  }
}

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

TEST_P(LoopSnapshotGLTest, FromTheRenderFunctionIsRefused) {
  auto loop = make_recording_loop(8, 6);
  loop->set_rendering_callback(RenderingCallback([&](std::uint32_t id) {
    EXPECT_THROW(loop->snapshot(4, 4, picture_.bytes.data()), std::system_error);
    drawn_.add(id);
  }));
  loop->request(1);
  EXPECT_EQ(drawn_.at_least(1), Ids{1});
}

TEST_P(LoopSnapshotGLTest, OfALoopWithoutSizeComesWithTheSizeAndHoldsUpNoDeletion) {
  for (const bool deleted : {true, false}) {
    auto loop = make_recording_loop(0, 0);
    auto snapshot = snapshot_of(*loop);
    EXPECT_EQ(snapshot.wait_for(30ms), std::future_status::timeout);
    deleted ? loop.reset() : loop->resize(9, 9);
    EXPECT_EQ(failure_of([&] { snapshot.get(); }) == "(none)", !deleted);
  }
  EXPECT_TRUE(agree(picture_, pattern_picture(0, 4, 4), exact));
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
