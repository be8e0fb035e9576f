#include "core/log.h"

#include <algorithm>
#include <cstring>
#include <fstream>
#include <mutex>
#include <optional>
#include <stdexcept>
#include <string>

#include "core/immortal.h"
#include "core/shared_block.h"

namespace oct {
namespace {

// Of a name, which may fill the field without a NUL.
constexpr std::size_t name_capacity = SharedBlock::size;

class LibraryLog {
 public:
  void set_block(const std::string& name) {
    const std::lock_guard lock(mutex_);
    block_.reset();
    opened_ = false;
    private_name_ = {};
    block_name_ = name;
  }

  void set_file_name(std::string_view name) {
    SharedBlock::Bytes bytes{};
    std::copy(name.begin(), name.end(), bytes.begin());
    const std::lock_guard lock(mutex_);
    open_block();
    private_name_ = bytes;
    if (block_) block_->write(bytes);
  }

  void write(std::string_view line) {
    const std::lock_guard lock(mutex_);
    open_block();
    const SharedBlock::Bytes bytes = block_ ? block_->read() : private_name_;
    const std::string name(bytes.data(), strnlen(bytes.data(), name_capacity));
    if (name != open_name_) open(name);
    if (file_.is_open()) file_ << line << std::endl;
  }

  void close() {
    const std::unique_lock lock(mutex_, std::try_to_lock);
    if (!lock) return;
    file_.close();
    open_name_ = std::string();
    private_name_ = {};
    opened_ = true;
    block_.reset();
  }

 private:
  // Without a block of its own, where the system refuses shared memory or another user has taken the name, the
  // log still works within this process.
  void open_block() {
    const char* const name = block_name_ ? block_name_->c_str() : "oct_log_settings";
    if (opened_ || !*name) return;
    opened_ = true;
    try {
      block_.emplace(name);
    } catch (const std::exception&) {
    }
  }

  void open(const std::string& name) {
    file_.close();
    file_.clear();
    if (!name.empty()) file_.open(name, std::ios::app);
    open_name_ = name;
  }

  std::mutex mutex_;
  std::optional<std::string> block_name_;  // instead of the one that all processes use
  std::optional<SharedBlock> block_;
  bool opened_ = false;  // or tried to
  SharedBlock::Bytes private_name_{};
  std::ofstream file_;
  std::string open_name_;
};

LibraryLog& library_log() {
  return immortal<LibraryLog>();
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
