// What the loop's threads meet at, each on its own: request queue, return map, desk of snapshots, event,
// functors.
#include <future>

#include <gtest/gtest.h>

#include "hosting/host/signal_event.h"
#include "hosting/loop/functors.h"
#include "hosting/loop/request_queue.h"
#include "hosting/loop/return_map.h"
#include "hosting/loop/snapshot_desk.h"
#include "support/test_context.h"

namespace oct::test {
namespace {

using std::chrono_literals::operator""ms;

template <class Result>
bool blocks(const std::future<Result>& waiter) {
  return waiter.wait_for(20ms) == std::future_status::timeout;
}

TEST(RequestQueueTest, EqualIdsWaitOnceAndRotationKeepsThem) {
  RequestQueue queue;
  for (const int id : {4, 7, 4, 4, no_request, 7}) queue.add(id);
  for (int round = 0; round < 2; ++round) {
    for (const int id : {4, 7, no_request}) EXPECT_EQ(queue.rotate(), id);
  }
  EXPECT_EQ(queue.take(), 4);
  queue.add(4);
  EXPECT_EQ(queue.take(), 7);
  EXPECT_EQ(queue.front(), 4) << "a snapshot passes over ids that draw nothing";
  EXPECT_EQ(queue.take(), no_request);
  EXPECT_EQ(queue.take(), 4);
  for (const auto& nothing : {queue.take(), queue.front(), queue.rotate()}) EXPECT_EQ(nothing, std::nullopt);
  queue.add(no_request);
  EXPECT_EQ(queue.front(), std::nullopt);
  auto drawable = std::async(std::launch::async, [&] {
    queue.wait([](RequestQueue::Content content) { return content.any && content.drawable; });
  });
  EXPECT_TRUE(blocks(drawable));
  queue.add(1);
  drawable.get();
}

HandOffBuffer* buffer_at(std::uintptr_t address) {
  return reinterpret_cast<HandOffBuffer*>(address);
}

TEST(ReturnMapTest, KeysInTurnAndOneBufferPerKey) {
  ReturnMap map;
  for (const auto& [key, address] : {std::pair{5, 16}, {-3, 32}, {5, 48}, {9, 64}}) {
    map.insert(key, buffer_at(address));
  }
  EXPECT_EQ(map.take(), buffer_at(32));
  EXPECT_EQ(map.take(), buffer_at(48));
  map.insert(4, buffer_at(16));  // comes when those above the last one have come
  map.insert(5, buffer_at(32));
  for (const std::uintptr_t address : {64, 16, 32}) EXPECT_EQ(map.take(), buffer_at(address));
  map.insert(9, buffer_at(64));
  map.close();
  for (int i = 0; i < 2; ++i) EXPECT_EQ(map.take(), nullptr) << "the end overtakes";
}

// In the moment before the return thread locks it, too.
TEST(ReturnMapTest, ABufferIsOutUntilItIsReturned) {
  ReturnMap map;
  map.insert(1, buffer_at(16));
  EXPECT_EQ(map.take(), buffer_at(16));
  auto waiter =
      std::async(std::launch::async, [&] { map.wait_until_returned(buffer_at(16), [] { return false; }); });
  EXPECT_TRUE(blocks(waiter));
  map.returned();
  waiter.get();
}

// One order at a time, from a client that waits until nobody writes to its memory any more.
TEST(SnapshotDeskTest, AnOrderIsTakenAndFinishedOrFails) {
  SnapshotDesk desk;
  int pixel = 0;
  const auto order = [&] {
    EXPECT_TRUE(desk.place({3, 4, &pixel}));
    return std::async(std::launch::async, [&] { return failure_of([&] { desk.wait(); }); });
  };
  EXPECT_FALSE(desk.take());
  desk.fail("Nobody is waiting. ");
  for (const std::string reason : {"(none)", "No paint. ", "(none)"}) {
    auto client = order();
    EXPECT_TRUE(desk.has_order());
    EXPECT_FALSE(desk.place({1, 1, &pixel}));
    const auto taken = desk.take();
    ASSERT_TRUE(taken);
    EXPECT_EQ(taken->height, 4U);
    EXPECT_EQ(taken->data, &pixel);
    EXPECT_FALSE(desk.has_order() || desk.take());
    EXPECT_TRUE(blocks(client));
    EXPECT_TRUE(desk.busy());
    reason == "(none)" ? desk.finish() : desk.fail(reason.c_str());
    EXPECT_FALSE(desk.busy());
    EXPECT_EQ(client.get(), reason);
  }
  auto last = order();
  desk.close("Closed. ");
  auto drained = std::async(std::launch::async, [&] { desk.drain(); });
  EXPECT_TRUE(blocks(drained));
  desk.fail("Too late. ");  // not even taken
  EXPECT_EQ(last.get(), "Too late. ");
  drained.get();
  EXPECT_EQ(failure_of([&] { desk.place({1, 1, &pixel}); }), "Closed. ");
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

TEST(ImageReadyCallbackTest, AnEmptyOneIsLogged) {
  EXPECT_EQ(log_of([] { ImageReadyCallback{nullptr}(1, 2, 3, nullptr); }),
            "Warning: returning image withoug callback being specified. \n");
}

}  // namespace
}  // namespace oct::test
