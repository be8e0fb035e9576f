// What the loop's threads meet at: the desk of snapshots and the event.
#include <future>

#include <gtest/gtest.h>

#include "hosting/host/signal_event.h"
#include "hosting/loop/snapshot_desk.h"
#include "support/test_context.h"

namespace oct::test {
namespace {

using std::chrono_literals::operator""ms;

template <class Result>
bool blocks(const std::future<Result>& waiter) {
  return waiter.wait_for(20ms) == std::future_status::timeout;
}

// One order at a time, from a client that waits until nobody writes to its memory any more.
TEST(SnapshotDeskTest, AnOrderIsTakenAndFinishedOrFails) {
  SnapshotDesk desk;
  int pixel = 0;
  const auto order = [&] {
    EXPECT_TRUE(desk.place({3, 4, gl::PixelFormat::bgra, &pixel}));
    return std::async(std::launch::async, [&] { return failure_of([&] { desk.wait(); }); });
  };
  EXPECT_FALSE(desk.take());
  desk.fail(ErrorKind::opengl, "Nobody is waiting. ");
  for (const std::string reason : {"(none)", "No paint. ", "(none)"}) {
    auto client = order();
    EXPECT_TRUE(desk.has_order());
    EXPECT_FALSE(desk.place({1, 1, gl::PixelFormat::bgra, &pixel}));
    const auto taken = desk.take();
    ASSERT_TRUE(taken);
    EXPECT_EQ(taken->height, 4U);
    EXPECT_EQ(taken->data, &pixel);
    EXPECT_FALSE(desk.has_order() || desk.take());
    EXPECT_TRUE(blocks(client));
    EXPECT_TRUE(desk.busy());
    reason == "(none)" ? desk.finish() : desk.fail(ErrorKind::opengl, reason.c_str());
    EXPECT_FALSE(desk.busy());
    EXPECT_EQ(client.get(), reason);
  }
  auto last = order();
  desk.close("Closed. ");
  auto drained = std::async(std::launch::async, [&] { desk.drain(); });
  EXPECT_TRUE(blocks(drained));
  desk.fail(ErrorKind::opengl, "Too late. ");  // not even taken
  EXPECT_EQ(last.get(), "Too late. ");
  drained.get();
  EXPECT_EQ(failure_of([&] { desk.place({1, 1, gl::PixelFormat::bgra, &pixel}); }), "Closed. ");
}

TEST(SignalEventTest, StaysSignalledUntilItIsPassedOrForGood) {
  for (const bool autoReset : {false, true}) {
    SignalEvent event(autoReset);
    const auto waiter = [&] { return std::async(std::launch::async, [&] { event.wait(); }); };
    auto first = waiter();
    EXPECT_TRUE(blocks(first));
    event.signal();
    first.get();
    auto second = waiter();
    EXPECT_EQ(blocks(second), autoReset);
    event.signal();
    second.get();
  }
}

}  // namespace
}  // namespace oct::test
