#include "core/timing_mark.h"

#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include "core/platform.h"
#include "hosting/offscreen/offscreen_buffer_object.h"
#include "support/mark_recorder.h"
#include "support/test_context.h"

namespace oct::test {
namespace {

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
  }
  EXPECT_EQ(recorder.all()[currentThreadId()],
            (Marks{"+outer", "+inner", "!before_rendering", "-inner", "-outer"}));
  EXPECT_EQ(recorder.all()[other], (Marks{"+Rendering callback (2)", "-Rendering callback (2)"}));
}

TEST(TimingMarkGLTest, OffscreenFrame) {
  TestContext context;
  OffscreenBufferObject buffer;
  buffer.resize(4, 4);
  MarkRecorder recorder;
  std::vector<unsigned char> pixels(64);
  buffer.set_output_data(pixels.data());
  buffer.prepare();
  buffer.finish();
  buffer.wait();
  EXPECT_EQ(recorder.all()[currentThreadId()],
            (Marks{"+OffscreenBuffer::set_output_data", "-OffscreenBuffer::set_output_data",
                   "+OffscreenBuffer::prepare", "!before_rendering", "-OffscreenBuffer::prepare",
                   "+OffscreenBuffer::finish", "-OffscreenBuffer::finish", "+OffscreenBuffer::wait",
                   "-OffscreenBuffer::wait"}));
}

}  // namespace
}  // namespace oct::test
