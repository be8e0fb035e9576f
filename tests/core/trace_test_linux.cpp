// A trace whose disk is full.
#include <csignal>
#include <filesystem>
#include <string>

#include <sys/resource.h>

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

}  // namespace
}  // namespace oct::test
