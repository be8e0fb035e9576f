// Another program that reads what this one writes.
#pragma once

#include <cstddef>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace oct::app {

// Where the system finds a program of this name, without what a platform adds to it; none: nowhere.
std::optional<std::filesystem::path> find_program(const std::string& name);

class ChildProcess {
 public:
  struct Ending {
    int code = 0;            // other than 0: it failed, or was ended
    std::string last_words;  // the last line on its error stream
  };

  // Its output goes nowhere. Throws a std::system_error when it cannot be started.
  ChildProcess(const std::filesystem::path& program, const std::vector<std::string>& arguments);
  ~ChildProcess();  // ends it where it still runs

  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;

  // To its standard input; waits until it is taken. False: it takes no more.
  bool write(const void* bytes, std::size_t count);

  // Ends its input and waits for its end. Once.
  Ending finish();

 private:
  struct System;
  const std::unique_ptr<System> system_;
};

}  // namespace oct::app
