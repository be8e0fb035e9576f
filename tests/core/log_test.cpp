#include "core/log.h"

#include <array>
#include <atomic>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <random>
#include <sstream>
#include <thread>
#include <vector>

#include "core/shared_block.h"
#include "oct_rendering/oct_rendering.h"
#include "support/test_context.h"

namespace oct::test {
namespace {

class LogTest : public testing::Test {
 protected:
  LogTest() { set_log_block(block_); }
  ~LogTest() override {
    setRendererLogFile(nullptr);
    set_log_block("");
    // Where named memory is a file, it outlives its processes.
    std::error_code ignored;
    std::filesystem::remove("/dev/shm/" + block_, ignored);
  }

  std::string settings() const {
    const SharedBlock::Bytes bytes = SharedBlock(block_.c_str()).read();
    return {bytes.data(), strnlen(bytes.data(), bytes.size())};
  }

  const std::string block_ = "oct_log_test_" + std::to_string(std::random_device{}());
};

TEST_F(LogTest, NamesOfThisAndOtherProcessesAreFollowed) {
  const auto file = std::filesystem::temp_directory_path() / (block_ + ".txt");
  std::ofstream(file) << "earlier\n";
  setRendererLogFile(file.string().c_str());
  EXPECT_EQ(settings(), file.string());
  log() << 1 << " is "
        << "appended"
        << " with " << 2.5;
  setRendererLogFile("");
  log() << "nowhere";
  SharedBlock::Bytes bytes{};
  file.string().copy(bytes.data(), bytes.size());
  SharedBlock(block_.c_str()).write(bytes);
  log() << "hello";
  setRendererLogFile("x");
  EXPECT_EQ(settings(), "x") << "rest of an older name";
  setRendererLogFile(nullptr);
  EXPECT_EQ(settings(), "");
  log() << "closes";
  EXPECT_EQ(text_of(file), "earlier\n1 is appended with 2.5\nhello\n");
  std::filesystem::remove(file);
}

TEST_F(LogTest, LengthOfTheName) {
  setRendererLogFile(std::string(1024, 'a').c_str());
  EXPECT_EQ(pending_error(), "(none)");
  EXPECT_EQ(settings(), std::string(1024, 'a'));
  log() << "a file of this name cannot be opened; nothing happens";

  setRendererLogFile(std::string(1025, 'b').c_str());
  EXPECT_EQ(pending_error(), "Filename for logging is too long. Filename is limited to 1024 characters. ");
  EXPECT_EQ(settings(), std::string(1024, 'a')) << "a refused name changes nothing";
}

// Another process that reads while this one writes sees the one name or the other.
TEST_F(LogTest, ANameIsSeenWhole) {
  const std::array<std::string, 2> names{std::string(700, 'a'), std::string(1000, 'b')};
  setRendererLogFile(names[0].c_str());
  std::atomic<bool> done{false};
  std::thread writer([&] {
    for (std::size_t i = 0; i < 10'000; ++i) setRendererLogFile(names[i % 2].c_str());
    done = true;
  });
  int cut = 0;
  while (!done) {
    const std::string seen = settings();
    cut += seen != names[0] && seen != names[1];
  }
  writer.join();
  EXPECT_EQ(cut, 0);
}

TEST(LogThreadTest, LogLinesOfSeveralThreadsStayWhole) {
  const std::string text = log_of([] {
    on_threads(6, [](int i) {
      for (int n = 0; n < 200; ++n) log() << "thread " << i << " writes a line";
    });
  });
  std::istringstream lines(text);
  std::map<std::string, int> counted;
  for (std::string line; std::getline(lines, line);) ++counted[line];
  EXPECT_EQ(counted.size(), 6U);
  for (const auto& [line, count] : counted) EXPECT_EQ(count, 200) << line;
}

}  // namespace
}  // namespace oct::test
