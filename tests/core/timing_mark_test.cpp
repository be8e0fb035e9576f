#include "core/timing_mark.h"

#include <gtest/gtest.h>

#include <map>
#include <mutex>
#include <set>
#include <thread>
#include <vector>

#include "core/platform.h"
#include "hosting/offscreen_buffer_object.h"
#include "support/test_context.h"

namespace oct::test {
namespace {

class Recorder : public TimingListener {
 public:
  Recorder() { setTimingListener(this); }
  ~Recorder() override { setTimingListener(nullptr); }
  void begin(std::string_view name, std::uint32_t thread, Time time) override { add("+", name, thread, time); }
  void end(std::string_view name, std::uint32_t thread, Time time) override { add("-", name, thread, time); }
  void instant(std::string_view name, std::uint32_t thread, Time time) override { add("!", name, thread, time); }

  std::vector<std::string> of(std::uint32_t thread) { return marks_[thread]; }

 private:
  void add(const char* kind, std::string_view name, std::uint32_t thread, Time time) {
    const std::lock_guard lock(mutex_);
    EXPECT_GE(time, last_[thread]);
    last_[thread] = time;
    marks_[thread].push_back(kind + std::string(name));
  }

  std::mutex mutex_;
  std::map<std::uint32_t, std::vector<std::string>> marks_;
  std::map<std::uint32_t, Time> last_;
};

TEST(TimingMarkTest, NestedMarksOfSeveralThreads) {
  const TimingMark unheard("nobody listens");
  Recorder recorder;
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
  using Marks = std::vector<std::string>;
  EXPECT_EQ(recorder.of(currentThreadId()), (Marks{"+outer", "+inner", "!before_rendering", "-inner", "-outer"}));
  EXPECT_EQ(recorder.of(other), (Marks{"+Rendering callback (2)", "-Rendering callback (2)"}));
}

TEST(TimingMarkGLTest, OffscreenFrame) {
  TestContext context;
  OffscreenBufferObject buffer;
  buffer.resize(4, 4);
  Recorder recorder;
  std::vector<unsigned char> pixels(64);
  buffer.set_output_data(pixels.data());
  buffer.prepare(0);
  buffer.finish();
  buffer.wait();
  const auto marks = recorder.of(currentThreadId());
  EXPECT_EQ(marks, (std::vector<std::string>{
                       "+OffscreenBuffer::set_output_data", "-OffscreenBuffer::set_output_data",
                       "+OffscreenBuffer::prepare", "!before_rendering", "-OffscreenBuffer::prepare",
                       "+OffscreenBuffer::finish", "-OffscreenBuffer::finish", "+OffscreenBuffer::wait",
                       "-OffscreenBuffer::wait"}));
}

}  // namespace
}  // namespace oct::test
