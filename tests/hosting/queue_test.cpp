// The request queue, the return map and the functors, on their own.
#include <gtest/gtest.h>

#include <atomic>
#include <future>

#include "hosting/loop/request_queue.h"
#include "hosting/loop/return_map.h"
#include "hosting/loop/visitors.h"

namespace oct::test {
namespace {

using std::chrono_literals::operator""ms;

TEST(RequestQueueTest, EqualIdsWaitOnce) {
  RequestQueue queue;
  for (const int id : {4, 7, 4, 4, -1, 7}) queue.add(id);
  EXPECT_EQ(queue.front(), 4);
  EXPECT_EQ(queue.take(), 4);
  queue.add(4);
  EXPECT_EQ(queue.take(), 7);
  EXPECT_EQ(queue.take(), -1);
  EXPECT_EQ(queue.take(), 4);
  EXPECT_TRUE(queue.empty());
  EXPECT_EQ(queue.take(), std::nullopt);
  EXPECT_EQ(queue.front(), std::nullopt);
  EXPECT_EQ(queue.rotate(), std::nullopt);
}

// A snapshot looks at the front again and again.
TEST(RequestQueueTest, FrontPassesOverIdsThatDrawNothing) {
  RequestQueue queue;
  queue.add(noRequest);
  EXPECT_EQ(queue.front(), std::nullopt);
  queue.add(5);
  EXPECT_EQ(queue.front(), 5);
  EXPECT_EQ(queue.take(), noRequest);
}

TEST(RequestQueueTest, RotationKeepsIds) {
  RequestQueue queue;
  for (const int id : {0, 3, 5}) queue.add(id);
  for (int round = 0; round < 2; ++round) {
    for (const int id : {0, 3, 5}) EXPECT_EQ(queue.rotate(), id);
  }
}

TEST(RequestQueueTest, PutBackGoesFirstUnlessAskedAgain) {
  RequestQueue queue;
  queue.add(1);
  queue.add(2);
  queue.putBack(*queue.take());
  EXPECT_EQ(queue.front(), 1);
  const auto taken = queue.take();
  queue.add(1);
  queue.putBack(*taken);
  EXPECT_EQ(queue.take(), 2);
  EXPECT_EQ(queue.take(), 1);
  EXPECT_TRUE(queue.empty());
}

TEST(RequestQueueTest, WaitEndsWithARequest) {
  RequestQueue queue;
  auto waiter = std::async(std::launch::async, [&] {
    queue.wait();
    return queue.take();
  });
  EXPECT_EQ(waiter.wait_for(30ms), std::future_status::timeout);
  queue.add(9);
  EXPECT_EQ(waiter.get(), 9);
}

HandOffBuffer* bufferAt(std::uintptr_t address) {
  return reinterpret_cast<HandOffBuffer*>(address);
}

TEST(ReturnMapTest, SmallestKeyFirstAndOneBufferPerKey) {
  ReturnMap map;
  map.insert(5, bufferAt(16));
  map.insert(-3, bufferAt(32));
  map.insert(5, bufferAt(48));
  map.insert(0, nullptr);
  EXPECT_EQ(map.take(), bufferAt(32));
  EXPECT_EQ(map.take(), nullptr);
  EXPECT_EQ(map.take(), bufferAt(48));
}

TEST(ReturnMapTest, ABufferIsOutUntilItIsReturned) {
  ReturnMap map;
  std::atomic<bool> giveUp{false};
  const auto waiting = [&](std::uintptr_t address) {
    return std::async(std::launch::async, [&map, &giveUp, address] {
      map.waitUntilReturned(bufferAt(address), [&] { return giveUp.load(); });
    });
  };
  waiting(16).get();  // not there
  map.insert(1, bufferAt(16));
  map.insert(2, bufferAt(32));
  auto first = waiting(16);
  auto second = waiting(32);
  EXPECT_EQ(first.wait_for(20ms), std::future_status::timeout);
  EXPECT_EQ(map.take(), bufferAt(16));
  EXPECT_EQ(first.wait_for(20ms), std::future_status::timeout);
  map.returned();
  first.get();
  EXPECT_EQ(second.wait_for(20ms), std::future_status::timeout);
  giveUp = true;
  map.wake();
  second.get();
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
  EXPECT_EQ(drained.wait_for(20ms), std::future_status::timeout);
  visitors.leave();
  drained.get();
  EXPECT_TRUE(visitors.empty());
}

}  // namespace
}  // namespace oct::test
