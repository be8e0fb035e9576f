// The library log: lines appended to the file whose name all processes share.
#pragma once

#include <sstream>
#include <string>
#include <string_view>

namespace oct {

// Sets the file name in the shared settings block; empty: no file. Throws std::invalid_argument for a name of
// more than 1024 bytes.
void set_log_file_name(std::string_view name);

// Moves the settings to the block of this name, or to this process alone if the name is empty. For tests,
// which must neither disturb nor follow what else runs on the machine.
void set_log_block(const std::string& name);

// One line of the log, written when the object ends. Failures of the log never reach the caller, that of memory
// included.
class LogLine {
 public:
  LogLine() = default;
  ~LogLine();
  LogLine(const LogLine&) = delete;
  LogLine& operator=(const LogLine&) = delete;

  template <class T>
  LogLine& operator<<(const T& value) {
    text_ << value;
    return *this;
  }

 private:
  std::ostringstream text_;
};

inline LogLine log() {
  return {};
}

}  // namespace oct
