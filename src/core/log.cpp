#include "core/log.h"

#include <cstring>
#include <fstream>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <string>
#include <vector>

#include "core/shared_block.h"

namespace oct {
namespace {

// Size of the field in the block; a name may fill it without a NUL.
constexpr std::size_t name_capacity = 1024;

class LibraryLog {
 public:
  void set_block(const std::string& name) {
    const std::lock_guard lock(mutex_);
    block_.reset();
    private_.clear();
    block_name_ = name;
  }

  void set_file_name(std::string_view name) {
    const std::lock_guard lock(mutex_);
    char* const shared = field();
    std::memset(shared, 0, name_capacity);
    std::memcpy(shared, name.data(), name.size());
  }

  void write(std::string_view line) {
    const std::lock_guard lock(mutex_);
    const char* const shared = field();
    const std::string name(shared, strnlen(shared, name_capacity));
    if (name != open_name_) open(name);
    if (file_.is_open()) file_ << line << std::endl;
  }

 private:
  // The shared field; a private one where the system refuses shared memory, so that the log still works
  // within this process.
  char* field() {
    if (!block_ && private_.empty()) {
      try {
        if (!block_name_.empty()) block_ = std::make_unique<SharedBlock>(block_name_.c_str(), name_capacity);
      } catch (const std::exception&) {
      }
      if (!block_) private_.resize(name_capacity);
    }
    return block_ ? block_->data() : private_.data();
  }

  void open(const std::string& name) {
    file_.close();
    file_.clear();
    if (!name.empty()) file_.open(name, std::ios::app);
    open_name_ = name;
  }

  std::mutex mutex_;
  std::string block_name_ = "oct_log_settings";
  std::unique_ptr<SharedBlock> block_;
  std::vector<char> private_;
  std::ofstream file_;
  std::string open_name_;
};

LibraryLog& library_log() {
  static LibraryLog instance;
  return instance;
}

}  // namespace

void set_log_block(const std::string& name) {
  library_log().set_block(name);
}

void set_log_file_name(std::string_view name) {
  if (name.size() > name_capacity) {
    throw std::invalid_argument("Filename for logging is too long. Filename is limited to " +
                                std::to_string(name_capacity) + " characters. ");
  }
  library_log().set_file_name(name);
}

LogLine::~LogLine() {
  try {
    library_log().write(text_.str());
  } catch (const std::exception&) {
    // A lost line is better than a lost frame.
  }
}

}  // namespace oct
