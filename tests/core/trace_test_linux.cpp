// Traces whose disk is full, and of processes that end.
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include <sys/resource.h>
#include <unistd.h>

#include "core/timing_mark.h"
#include "oct_rendering/oct_rendering.h"
#include "support/trace_reader.h"

namespace oct::test {
namespace {

// The system refuses to let any file of the process grow beyond this.
class FileLimit {
 public:
  explicit FileLimit(rlim_t bytes) : handler_(std::signal(SIGXFSZ, SIG_IGN)) {
    getrlimit(RLIMIT_FSIZE, &before_);
    const rlimit limit{bytes, before_.rlim_max};
    setrlimit(RLIMIT_FSIZE, &limit);
  }
  ~FileLimit() {
    setrlimit(RLIMIT_FSIZE, &before_);
    std::signal(SIGXFSZ, handler_);
  }

 private:
  rlimit before_{};
  const sighandler_t handler_;
};

TEST(FullDiskTest, EndsTheTraceWithALineAndLeavesItWhole) {
  const std::filesystem::path file =
      std::filesystem::path(testing::TempDir()) / ("oct_full_" + std::to_string(getpid()));
  setRendererTraceFile("/dev/full");
  EXPECT_TRUE(pending_error().starts_with("The trace file could not be written: "));
  setRendererTraceFile(file.c_str());
  std::string line;
  {
    const FileLimit limit(100'000);
    testing::internal::CaptureStderr();
    for (int i = 0; i < 3000; ++i) const TimingMark mark("a phase of a trace for which there is no room");
    line = testing::internal::GetCapturedStderr();
  }
  EXPECT_TRUE(line.starts_with("The trace file could not be written: ")) << line;
  EXPECT_TRUE(line.ends_with(" The trace ends. \n")) << line;
  EXPECT_EQ(std::count(line.begin(), line.end(), '\n'), 1) << line;
  EXPECT_GT(JsonReader(text_of(file)).events().size(), 100U);
  setRendererTraceFile(nullptr);
  std::filesystem::remove(file);
}

// Other threads go on with their marks while the process ends, in whatever way, and while a child of it ends.
TEST(EndOfProcessTest, LeavesTheTraceWhole) {
  const std::filesystem::path file =
      std::filesystem::path(testing::TempDir()) / ("oct_end_" + std::to_string(getpid()));
  const auto mark_until_end = [&](int milliseconds, const std::function<void()>& end) {
    setRendererTraceFile(file.c_str());
    std::vector<std::thread> marking;
    for (int i = 0; i < 2; ++i) {
      marking.emplace_back([] {
        for (;;) {
          const TimingMark mark("phase");
          std::this_thread::sleep_for(std::chrono::microseconds(300));
        }
      });
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
    end();
  };
  EXPECT_EXIT(mark_until_end(300, [] { kill(getpid(), SIGKILL); }), testing::KilledBySignal(SIGKILL), "");
  EXPECT_GT(JsonReader(text_of(file)).events().size(), 3U);
  EXPECT_EXIT(mark_until_end(20, [] { std::exit(0); }), testing::ExitedWithCode(0), "");
  EXPECT_FALSE(read_trace(file).tracks.empty());

  setRendererTraceFile(file.c_str());
  { const TimingMark mark("before"); }
  EXPECT_EXIT(
      {
        const TimingMark mark("of the child");
        std::exit(0);
      },
      testing::ExitedWithCode(0), "");
  { const TimingMark mark("after"); }
  setRendererTraceFile(nullptr);
  const auto phases = read_trace(file).tracks.begin()->second;
  ASSERT_EQ(phases.size(), 2U);
  EXPECT_EQ(phases[1].name, "after");
  std::filesystem::remove(file);
}

}  // namespace
}  // namespace oct::test
