#include "core/object_lock.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <memory>
#include <thread>

#include <gtest/gtest.h>

#include "support/test_context.h"

namespace oct::test {
namespace {

TEST(ObjectLockTest, SerialisesOneObjectAndNotAnother) {
  int first = 0;
  int second = 0;
  std::atomic<int> inside{0};
  std::atomic<int> most{0};
  {
    const ObjectLock held(&second);  // must not hinder the users of the first
    on_threads(8, [&](int) {
      for (int n = 0; n < 2000; ++n) {
        const ObjectLock lock(&first);
        most = std::max(most.load(), ++inside);
        ++first;
        --inside;
      }
    });
    EXPECT_EQ(object_lock_count(), 1U);
  }
  EXPECT_EQ(first, 16000);
  EXPECT_EQ(most, 1);
}

// A render loop holds the lock nearly all the time; a setter must come in after the frame in progress.
TEST(ObjectLockTest, NobodyStarvesBesideARenderLoop) {
  int object = 0;
  std::atomic<bool> stop{false};
  std::atomic<int> frames{0};
  std::thread loop([&] {
    while (!stop) {
      const ObjectLock lock(&object);
      std::this_thread::sleep_for(std::chrono::milliseconds(2));
      ++frames;
    }
  });
  while (frames == 0) std::this_thread::yield();
  int most_frames = 0;
  for (int i = 0; i < 50; ++i) {
    const int before = frames;
    const ObjectLock lock(&object);
    most_frames = std::max(most_frames, frames - before);
  }
  stop = true;
  loop.join();
  EXPECT_LE(most_frames, 2);  // the one in progress, and one that began before this thread had asked
}

TEST(ObjectLockTest, EntriesOfDestroyedObjectsDoNotPileUp) {
  EXPECT_EQ(failure_of([] { ObjectLock(nullptr); }), "Cannot lock nullptr. ");
  for (int i = 0; i < 1000; ++i) {
    const auto object = std::make_unique<int>(i);
    const ObjectLock lock(object.get());
    const ObjectLock again(object.get());  // the same thread may
    EXPECT_EQ(object_lock_count(), 2U);
  }
  EXPECT_EQ(object_lock_count(), 0U);
}

}  // namespace
}  // namespace oct::test
