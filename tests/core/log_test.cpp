#include "core/log.h"

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

  // What the file holds; it is removed.
  static std::string taken(const std::filesystem::path& file) {
    std::ostringstream text;
    text << std::ifstream(file).rdbuf();
    std::filesystem::remove(file);
    return text.str();
  }

  std::string settings() const {
    const SharedBlock block(block_.c_str(), 1024);
    return {block.data(), strnlen(block.data(), 1024)};
  }

  const std::string block_ = "oct_log_test_" + std::to_string(std::random_device{}());
};

TEST_F(LogTest, LinesGoToTheNamedFile) {
  EXPECT_EQ(log_of([] {
              log() << "Uniform "
                    << "gamma"
                    << " was not found. ";
              log() << 1 << " and " << 2.5;
            }),
            "Uniform gamma was not found. \n1 and 2.5\n");
}

TEST_F(LogTest, LinesAreAppended) {
  const auto file = std::filesystem::temp_directory_path() / (block_ + "_append.txt");
  std::ofstream(file) << "earlier\n";
  setRendererLogFile(file.string().c_str());
  log() << "later";
  setRendererLogFile("");
  log() << "nowhere";
  EXPECT_EQ(taken(file), "earlier\nlater\n");
}

TEST_F(LogTest, NameIsSharedWithOtherProcesses) {
  setRendererLogFile("some/file.txt");
  EXPECT_EQ(settings(), "some/file.txt");
  setRendererLogFile("x");
  EXPECT_EQ(settings(), "x") << "rest of an older name";
  setRendererLogFile(nullptr);
  EXPECT_EQ(settings(), "");
}

TEST_F(LogTest, NameSetByAnotherProcessIsFollowed) {
  const auto file = std::filesystem::temp_directory_path() / (block_ + "_follow.txt");
  log() << "opens the block";
  {
    const SharedBlock block(block_.c_str(), 1024);
    std::strcpy(block.data(), file.string().c_str());
  }
  log() << "hello";
  setRendererLogFile(nullptr);
  log() << "closes";
  EXPECT_EQ(taken(file), "hello\n");
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
