// What the loop's threads meet at, each on its own: request queue, return map, visitors, event, functors.
#include <future>

#include <gtest/gtest.h>

#include "hosting/host/signal_event.h"
#include "hosting/loop/functors.h"
#include "hosting/loop/request_queue.h"
#include "hosting/loop/return_map.h"
#include "hosting/loop/visitors.h"
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
  queue.add(2);
  queue.put_back(*queue.take());
  EXPECT_EQ(queue.front(), 4);
  const auto taken = queue.take();
  queue.add(4);
  queue.put_back(*taken);  // asked for again meanwhile
  EXPECT_EQ(queue.take(), 2);
  EXPECT_EQ(queue.take(), 4);
  EXPECT_TRUE(queue.empty());
  for (const auto& nothing : {queue.take(), queue.front(), queue.rotate()}) EXPECT_EQ(nothing, std::nullopt);
}

HandOffBuffer* buffer_at(std::uintptr_t address) {
  return reinterpret_cast<HandOffBuffer*>(address);
}

TEST(ReturnMapTest, SmallestKeyFirstAndOneBufferPerKey) {
  ReturnMap map;
  map.insert(5, buffer_at(16));
  map.insert(-3, buffer_at(32));
  map.insert(5, buffer_at(48));
  map.insert(0, nullptr);
  for (const std::uintptr_t address : {32, 0, 48}) EXPECT_EQ(map.take(), buffer_at(address));
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

TEST(VisitorsTest, ClosedDoorsAndTheLastToLeave) {
  Visitors visitors;
  EXPECT_TRUE(visitors.enter());
  EXPECT_TRUE(visitors.enter());
  visitors.close();
  EXPECT_FALSE(visitors.enter());
  auto drained = std::async(std::launch::async, [&] { visitors.drain(); });
  visitors.leave();
  EXPECT_FALSE(visitors.empty());
  EXPECT_TRUE(blocks(drained));
  visitors.leave();
  drained.get();
  EXPECT_TRUE(visitors.empty());
}

TEST(SignalEventTest, StaysSignalledUntilItIsClearedOrPassed) {
  for (const bool autoReset : {false, true}) {
    SignalEvent event(autoReset);
    int actions = 0;
    const auto count = [&] { ++actions; };
    const auto waiter = [&] { return std::async(std::launch::async, [&] { return event.wait([] {}); }); };
    auto first = waiter();
    EXPECT_TRUE(blocks(first));
    event.signal(7);
    EXPECT_EQ(first.get(), 7U);
    if (!autoReset) {
      for (int i = 0; i < 2; ++i) EXPECT_EQ(event.wait(count), 7U);
      event.clear(count);
      EXPECT_EQ(actions, 3);
    }
    auto second = waiter();
    EXPECT_TRUE(blocks(second));
    event.signal(2);
    EXPECT_EQ(second.get(), 2U);
  }
}

TEST(ImageReadyCallbackTest, AnEmptyOneIsLogged) {
  EXPECT_EQ(log_of([] { ImageReadyCallback{nullptr}(1, 2, 3, nullptr); }),
            "Warning: returning image withoug callback being specified. \n");
}

}  // namespace
}  // namespace oct::test
