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
constexpr std::size_t nameCapacity = 1024;

class LibraryLog {
 public:
  void setBlock(const std::string& name) {
    const std::lock_guard lock(mutex_);
    block_.reset();
    private_.clear();
    blockName_ = name;
  }

  void setFileName(std::string_view name) {
    const std::lock_guard lock(mutex_);
    char* const shared = field();
    std::memset(shared, 0, nameCapacity);
    std::memcpy(shared, name.data(), name.size());
  }

  void write(std::string_view line) {
    const std::lock_guard lock(mutex_);
    const char* const shared = field();
    const std::string name(shared, strnlen(shared, nameCapacity));
    if (name != openName_) open(name);
    if (file_.is_open()) file_ << line << std::endl;
  }

 private:
  // The shared field; a private one where the system refuses shared memory, so that the log still works
  // within this process.
  char* field() {
    if (!block_ && private_.empty()) {
      try {
        if (!blockName_.empty()) block_ = std::make_unique<SharedBlock>(blockName_.c_str(), nameCapacity);
      } catch (const std::exception&) {
      }
      if (!block_) private_.resize(nameCapacity);
    }
    return block_ ? block_->data() : private_.data();
  }

  void open(const std::string& name) {
    file_.close();
    file_.clear();
    if (!name.empty()) file_.open(name, std::ios::app);
    openName_ = name;
  }

  std::mutex mutex_;
  std::string blockName_ = "oct_log_settings";
  std::unique_ptr<SharedBlock> block_;
  std::vector<char> private_;
  std::ofstream file_;
  std::string openName_;
};

LibraryLog& libraryLog() {
  static LibraryLog instance;
  return instance;
}

}  // namespace

void setLogBlock(const std::string& name) {
  libraryLog().setBlock(name);
}

void setLogFileName(std::string_view name) {
  if (name.size() > nameCapacity) {
    throw std::invalid_argument("Filename for logging is too long. Filename is limited to " +
                                std::to_string(nameCapacity) + " characters. ");
  }
  libraryLog().setFileName(name);
}

LogLine::~LogLine() {
  try {
    libraryLog().write(text_.str());
  } catch (const std::exception&) {
    // A lost line is better than a lost frame.
  }
}

}  // namespace oct
