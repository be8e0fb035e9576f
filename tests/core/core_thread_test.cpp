// The library frame used by many threads at once.
#include <algorithm>
#include <atomic>
#include <fstream>
#include <map>
#include <sstream>
#include <thread>

#include "core/timing_mark.h"
#include "oct_rendering/oct_rendering.h"
#include "support/test_context.h"

namespace oct::test {
namespace {

TEST(CoreThreadTest, EveryErrorIsReadByItsOwnThread) {
  testing::internal::CaptureStderr();
  onThreads(8, [](int i) {
    for (int n = 0; n < 200; ++n) {
      if (i % 2) {
        setDisplayMedianFilter(nullptr, 0);
        EXPECT_EQ(isRendererError(), OCT_RENDERER_ERROR);
      } else {
        finishOffscreenFrame(nullptr, nullptr);
      }
      // No other thread takes it: each takes its own first, and posts before it takes.
      EXPECT_EQ(pendingError(), i % 2 ? "Invalid DisplayRenderingHandle specified. "
                                      : "Invalid OffscreenTargetHandle specified. ");
    }
  });
  EXPECT_EQ(isRendererError(), 0);
  // Lines of several threads do not mix.
  std::istringstream lines(testing::internal::GetCapturedStderr());
  std::map<std::string, int> counted;
  for (std::string line; std::getline(lines, line);) ++counted[line];
  EXPECT_EQ(counted["An error occured: Invalid DisplayRenderingHandle specified. "], 800);
  EXPECT_EQ(counted["An error occured: Invalid OffscreenTargetHandle specified. "], 800);
  EXPECT_EQ(counted.size(), 2U);
}

TEST(CoreThreadTest, ListenerComesAndGoesBetweenMarks) {
  class Counter : public TimingListener {
   public:
    void begin(std::string_view, std::uint32_t, Time) override { ++open; }
    void end(std::string_view, std::uint32_t, Time) override { --open; }
    void instant(std::string_view, std::uint32_t, Time) override {}
    std::atomic<int> open{0};
  } counter;
  onThreads(4, [&](int i) {
    for (int n = 0; n < 1000; ++n) {
      if (i == 0) setTimingListener(n % 2 ? &counter : nullptr);
      const TimingMark outer("outer");
      const TimingMark inner("inner");
    }
  });
  setTimingListener(nullptr);
  EXPECT_EQ(counter.open, 0) << "a mark ended at another listener than it began at";
}

}  // namespace
}  // namespace oct::test
