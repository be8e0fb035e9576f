// A machine of several users: names in shared folders that somebody else was quicker to take.
#include <filesystem>
#include <fstream>
#include <functional>
#include <random>

#include <sys/stat.h>
#include <unistd.h>

#include "core/log.h"
#include "hosting/loop/render_trace.h"
#include "oct_rendering/oct_rendering.h"
#include "support/test_context.h"

namespace oct::test {
namespace {

namespace fs = std::filesystem;

constexpr uid_t nobody = 65534;

class OtherUsersTest : public testing::Test {
 protected:
  OtherUsersTest() { fs::create_directory(folder_); }
  ~OtherUsersTest() override {
    setRendererLogFile(nullptr);
    set_log_block("");
    set_render_trace_file(trace_);
    fs::remove_all(folder_);
    fs::remove(block_file_);
  }

  static void write(const fs::path& file, const std::string& text) { std::ofstream(file) << text; }

  const std::string name_ = "oct_others_test_" + std::to_string(std::random_device{}());
  const fs::path folder_ = fs::temp_directory_path() / name_;
  const fs::path block_file_ = "/dev/shm/" + name_;
  const fs::path victim_ = folder_ / "victim";
  const fs::path trace_ = render_trace_file();
};

// Whoever owns the block says which file this process appends to.
TEST_F(OtherUsersTest, ABlockOfAnotherUserDoesNotDirectTheLog) {
  const fs::path own = folder_ / "own";
  const std::vector<std::pair<std::string, std::function<int()>>> blocks{
      {"writable for everybody", [&] { return chmod(block_file_.c_str(), 0666); }},
      {"another user's", [&] { return chown(block_file_.c_str(), nobody, nobody); }}};
  for (const auto& [what, give_away] : blocks) {
    fs::remove(block_file_);
    fs::remove(own);
    write(block_file_, victim_.string());
    if (give_away() != 0) GTEST_SKIP() << "only root can give a file away";
    set_log_block(name_);
    log() << "not for the victim";
    EXPECT_FALSE(fs::exists(victim_)) << what;
    setRendererLogFile(own.c_str());
    log() << "private";
    EXPECT_EQ(text_of(own), "private\n") << what;
    EXPECT_EQ(text_of(block_file_), victim_.string()) << what;
  }
}

TEST_F(OtherUsersTest, ABlockThatIsCutIsAnEmptyName) {
  set_log_block(name_);
  setRendererLogFile((folder_ / "log").c_str());
  log() << "before";
  fs::resize_file(block_file_, 0);
  log() << "lost";
  setRendererLogFile((folder_ / "log").c_str());
  log() << "after";
  EXPECT_EQ(pending_error(), "(none)");
  EXPECT_EQ(text_of(folder_ / "log"), "before\nafter\n");
}

TEST_F(OtherUsersTest, TheTraceEmptiesNoFileBehindALinkAndNoneOfAnotherUser) {
  const fs::path trace = folder_ / "trace";
  const std::vector<std::pair<std::string, std::function<void()>>> traps{
      {"symbolic link", [&] { fs::create_symlink(victim_, trace); }},
      {"hard link", [&] { fs::create_hard_link(victim_, trace); }},
      {"pipe", [&] { mkfifo(trace.c_str(), 0600); }},
      {"another user's", [&] {
         fs::rename(victim_, trace);
         if (chown(trace.c_str(), nobody, nobody) != 0) GTEST_SKIP() << "only root can give a file away";
         fs::create_symlink(trace, victim_);
       }}};
  for (const auto& [what, lay] : traps) {
    write(victim_, "precious");
    lay();
    set_render_trace_file(trace);
    trace_render_call(7);
    EXPECT_EQ(text_of(victim_), "precious") << what;
    fs::remove(trace);
  }
  trace_render_call(8);
  EXPECT_FALSE(fs::exists(trace)) << "opened once a process";
  write(trace, "old");
  set_render_trace_file(trace);
  trace_render_call(9);
  EXPECT_EQ(text_of(trace), "9\n") << "its own file is emptied";
}

}  // namespace
}  // namespace oct::test
