// Read and written as a file: a mapping would end the process when somebody cuts the block.
#include "core/shared_block.h"

#include <boost/interprocess/shared_memory_object.hpp>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include "core/exception.h"

namespace oct {

namespace ipc = boost::interprocess;

namespace {

// A copy can be interrupted half-way: whoever copies holds the file. Where its holder hangs, the copy is made without.
class FileTurn {
 public:
  FileTurn(int file, int kind) : file_(file) {
    constexpr int attempts = 100;
    for (int i = 0; i < attempts && !held_; ++i) {
      if (i > 0) usleep(1000);
      held_ = flock(file_, kind | LOCK_NB) == 0;
    }
  }
  ~FileTurn() {
    if (held_) flock(file_, LOCK_UN);
  }
  FileTurn(const FileTurn&) = delete;
  FileTurn& operator=(const FileTurn&) = delete;

 private:
  const int file_;
  bool held_ = false;
};

}  // namespace

struct SharedBlock::Mapping {
  ipc::shared_memory_object memory;

  int file() const { return memory.get_mapping_handle().handle; }
};

SharedBlock::SharedBlock(const char* name)
    : mapping_(std::make_unique<Mapping>(
          Mapping{ipc::shared_memory_object(ipc::open_or_create, name, ipc::read_write)})) {
  struct stat status {};
  const bool ours = fstat(mapping_->file(), &status) == 0 && S_ISREG(status.st_mode) &&
                    status.st_uid == geteuid() && (status.st_mode & (S_IWGRP | S_IWOTH)) == 0;
  if (!ours) throw SystemError("The shared block belongs to somebody else. ");
}

SharedBlock::~SharedBlock() = default;

// Bytes beyond the block's end, where it is new or was cut, are 0.
SharedBlock::Bytes SharedBlock::read() const {
  Bytes bytes{};
  const FileTurn turn(mapping_->file(), LOCK_SH);
  if (pread(mapping_->file(), bytes.data(), size, 0) < 0) return {};
  return bytes;
}

void SharedBlock::write(const Bytes& bytes) {
  const FileTurn turn(mapping_->file(), LOCK_EX);
  if (pwrite(mapping_->file(), bytes.data(), size, 0) != static_cast<ssize_t>(size)) {
    throw SystemError("The shared block could not be written. ");
  }
}

}  // namespace oct
