#include "command_line/child_process.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <sstream>
#include <system_error>

#include <fcntl.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include "command_line/last_line.h"

extern char** environ;

namespace oct::app {
namespace {

class Descriptor {
 public:
  Descriptor() = default;
  explicit Descriptor(int number) : number_(number) {}
  ~Descriptor() { close(); }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;

  int get() const { return number_; }
  void take(int number) {
    close();
    number_ = number;
  }
  void close() {
    if (number_ >= 0) ::close(number_);
    number_ = -1;
  }

 private:
  int number_ = -1;
};

// What the child's standard streams are.
class StreamActions {
 public:
  StreamActions(int input, int errors) {
    check(posix_spawn_file_actions_init(&actions_));
    check(posix_spawn_file_actions_adddup2(&actions_, input, STDIN_FILENO));
    check(posix_spawn_file_actions_addopen(&actions_, STDOUT_FILENO, "/dev/null", O_WRONLY, 0));
    check(posix_spawn_file_actions_adddup2(&actions_, errors, STDERR_FILENO));
  }
  ~StreamActions() { posix_spawn_file_actions_destroy(&actions_); }
  StreamActions(const StreamActions&) = delete;
  StreamActions& operator=(const StreamActions&) = delete;

  const posix_spawn_file_actions_t* get() const { return &actions_; }

  static void check(int error) {
    if (error != 0) throw std::system_error(error, std::generic_category());
  }

 private:
  posix_spawn_file_actions_t actions_{};
};

}  // namespace

std::optional<std::filesystem::path> find_program(const std::string& name) {
  const char* const path = std::getenv("PATH");
  std::istringstream folders(path ? path : "");
  for (std::string folder; std::getline(folders, folder, ':');) {
    if (folder.empty()) continue;
    const std::filesystem::path program = std::filesystem::path(folder) / name;
    std::error_code ignored;
    if (std::filesystem::is_regular_file(program, ignored) && access(program.c_str(), X_OK) == 0)
      return program;
  }
  return std::nullopt;
}

struct ChildProcess::System {
  pid_t child = -1;  // until its end has been noticed
  // Not a pipe: writing to one that nobody reads would end this program.
  Descriptor input;
  std::unique_ptr<FILE, int (*)(FILE*)> errors{std::tmpfile(), std::fclose};
};

ChildProcess::ChildProcess(const std::filesystem::path& program, const std::vector<std::string>& arguments)
    : system_(std::make_unique<System>()) {
  if (!system_->errors) throw std::system_error(errno, std::generic_category());
  std::array<int, 2> ends{};
  if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()) != 0) {
    throw std::system_error(errno, std::generic_category());
  }
  system_->input.take(ends[0]);
  const Descriptor childs_end(ends[1]);
  const StreamActions streams(childs_end.get(), fileno(system_->errors.get()));
  std::vector<std::string> words{program.string()};
  words.insert(words.end(), arguments.begin(), arguments.end());
  std::vector<char*> pointers;
  for (std::string& word : words) pointers.push_back(word.data());
  pointers.push_back(nullptr);
  StreamActions::check(
      posix_spawn(&system_->child, program.c_str(), streams.get(), nullptr, pointers.data(), environ));
}

ChildProcess::~ChildProcess() {
  if (system_->child < 0) return;
  kill(system_->child, SIGKILL);
  waitpid(system_->child, nullptr, 0);
}

bool ChildProcess::write(const void* bytes, std::size_t count) {
  const char* next = static_cast<const char*>(bytes);
  while (count > 0) {
    const ssize_t taken = send(system_->input.get(), next, count, MSG_NOSIGNAL);
    if (taken < 0 && errno == EINTR) continue;
    if (taken <= 0) return false;
    next += taken;
    count -= static_cast<std::size_t>(taken);
  }
  return true;
}

ChildProcess::Ending ChildProcess::finish() {
  system_->input.close();
  int status = 0;
  while (waitpid(system_->child, &status, 0) < 0 && errno == EINTR) {
  }
  system_->child = -1;
  Ending ending;
  ending.code = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
  std::array<char, 4096> tail{};
  FILE* const errors = system_->errors.get();
  std::fseek(errors, 0, SEEK_END);
  const long length = std::ftell(errors);
  std::fseek(errors, std::max(0L, length - static_cast<long>(tail.size())), SEEK_SET);
  ending.last_words = last_line_of({tail.data(), std::fread(tail.data(), 1, tail.size(), errors)});
  return ending;
}

}  // namespace oct::app
