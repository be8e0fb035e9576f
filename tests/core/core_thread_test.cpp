// The library frame and its timing marks, used by many threads at once.
#include <algorithm>
#include <map>
#include <sstream>
#include <thread>

#include "core/platform.h"
#include "core/timing_mark.h"
#include "oct_rendering/oct_rendering.h"
#include "support/mark_recorder.h"
#include "support/test_context.h"

namespace oct::test {
namespace {

TEST(CoreThreadTest, EveryErrorIsReadByItsOwnThread) {
  const std::string messages[] = {"Invalid DisplayRenderingHandle specified. ",
                                  "Invalid OffscreenTargetHandle specified. "};
  testing::internal::CaptureStderr();
  onThreads(8, [&](int i) {
    for (int n = 0; n < 200; ++n) {
      i % 2 == 0 ? clearDisplayData(nullptr) : finishOffscreenFrame(nullptr, nullptr);
      EXPECT_EQ(isRendererError(), OCT_RENDERER_ERROR);
      // No other thread takes it: each takes its own first, and posts before it takes.
      EXPECT_EQ(pendingError(), messages[i % 2]);
    }
  });
  EXPECT_EQ(isRendererError(), 0);
  // Lines of several threads do not mix.
  std::istringstream lines(testing::internal::GetCapturedStderr());
  std::map<std::string, int> counted;
  for (std::string line; std::getline(lines, line);) ++counted[line];
  for (const std::string& message : messages) EXPECT_EQ(counted["An error occured: " + message], 800);
  EXPECT_EQ(counted.size(), 2U);
}

using Marks = MarkRecorder::Marks;

TEST(TimingMarkTest, NestedMarksOfSeveralThreads) {
  const TimingMark unheard("nobody listens");
  MarkRecorder recorder;
  std::uint32_t other = 0;
  {
    const TimingMark outer("outer");
    std::thread([&] {
      const TimingMark mark("Rendering callback (", "2)");
      other = currentThreadId();
    }).join();
    const TimingMark inner("inner");
    recordTimingMark("before_rendering");
    setTimingListener(nullptr);  // a mark ends at the listener that it began at
    const TimingMark late("late");
  }
  EXPECT_EQ(recorder.all()[currentThreadId()],
            (Marks{"+outer", "+inner", "!before_rendering", "-inner", "-outer"}));
  EXPECT_EQ(recorder.all()[other], (Marks{"+Rendering callback (2)", "-Rendering callback (2)"}));
}

TEST(TimingMarkTest, ListenerComesAndGoesBetweenMarks) {
  MarkRecorder recorder;
  onThreads(4, [&](int i) {
    for (int n = 0; n < 1000; ++n) {
      if (i == 0) setTimingListener(n % 2 ? &recorder : nullptr);
      const TimingMark mark("mark");
    }
  });
  for (const auto& [thread, marks] : recorder.all()) {
    EXPECT_EQ(std::ranges::count(marks, "+mark"), std::ranges::count(marks, "-mark"));
  }
}

}  // namespace
}  // namespace oct::test
