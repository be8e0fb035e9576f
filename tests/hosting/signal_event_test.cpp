#include "hosting/host/signal_event.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <future>
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

// A wait begins, is seen not to return, and ends with the signal.
void expectToBlock(SignalEvent& event) {
  auto waiter = std::async(std::launch::async, [&] { return event.wait(nothing); });
  EXPECT_EQ(waiter.wait_for(std::chrono::milliseconds(20)), std::future_status::timeout);
  event.signal(2);
  EXPECT_EQ(waiter.get(), 2U);
}

TEST(SignalEventTest, AutoResetLetsOneWaiterPass) {
  SignalEvent event(true);
  event.signal(1);
  event.wait(nothing);
  expectToBlock(event);
}

TEST(SignalEventTest, ClearedEventBlocksAgain) {
  SignalEvent event;
  event.signal(1);
  int cleared = 0;
  event.clear([&] { ++cleared; });
  expectToBlock(event);
  EXPECT_EQ(cleared, 1);
}

}  // namespace
}  // namespace oct::test
