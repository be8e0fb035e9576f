#include "hosting/signal_event.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <thread>
#include <vector>

namespace oct::test {
namespace {

constexpr auto nothing = [] {};

TEST(SignalEventTest, ManualResetLetsEveryWaiterPass) {
  SignalEvent event;
  std::atomic<int> passed{0};
  std::vector<std::thread> waiters;
  for (int i = 0; i < 4; ++i) {
    waiters.emplace_back([&] {
      EXPECT_EQ(event.wait(nothing), 7U);
      ++passed;
    });
  }
  std::this_thread::sleep_for(std::chrono::milliseconds(20));
  EXPECT_EQ(passed, 0);
  event.signal(7);
  for (std::thread& waiter : waiters) waiter.join();
  EXPECT_EQ(event.wait(nothing), 7U) << "still signalled";
}

TEST(SignalEventTest, AutoResetLetsOneWaiterPass) {
  SignalEvent event(true);
  event.signal(1);
  event.wait(nothing);
  std::atomic<bool> passed{false};
  std::thread waiter([&] {
    event.wait(nothing);
    passed = true;
  });
  std::this_thread::sleep_for(std::chrono::milliseconds(20));
  EXPECT_FALSE(passed);
  event.signal(2);
  waiter.join();
}

TEST(SignalEventTest, ClearedEventBlocksAgain) {
  SignalEvent event;
  event.signal(1);
  int cleared = 0;
  event.clear([&] { ++cleared; });
  std::atomic<bool> passed{false};
  std::thread waiter([&] {
    event.wait(nothing);
    passed = true;
  });
  std::this_thread::sleep_for(std::chrono::milliseconds(20));
  EXPECT_FALSE(passed);
  event.signal(1);
  waiter.join();
  EXPECT_EQ(cleared, 1);
}

}  // namespace
}  // namespace oct::test
