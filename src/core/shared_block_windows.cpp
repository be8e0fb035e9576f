// The system's own named shared memory: it lives as long as one process holds it open, and belongs to a session.
// Boost's portable kind would emulate it by files and needs a boot identifier that restricted machines do not give.
#include "core/shared_block.h"

#include <cstring>
#include <mutex>
#include <string>

#include <windows.h>
#include <boost/interprocess/mapped_region.hpp>
#include <boost/interprocess/windows_shared_memory.hpp>

namespace oct {

namespace ipc = boost::interprocess;

namespace {

// A copy can be interrupted half-way: whoever copies holds this. Where the system gives none, or its holder hangs, the
// copy is made without.
class BlockMutex {
 public:
  explicit BlockMutex(const char* block)
      : handle_(CreateMutexA(nullptr, FALSE, (std::string(block) + "_lock").c_str())) {}
  ~BlockMutex() {
    if (handle_) CloseHandle(handle_);
  }
  BlockMutex(const BlockMutex&) = delete;
  BlockMutex& operator=(const BlockMutex&) = delete;

  void lock() {
    constexpr DWORD patience = 100;  // milliseconds
    const DWORD result = handle_ ? WaitForSingleObject(handle_, patience) : WAIT_FAILED;
    held_ = result == WAIT_OBJECT_0 || result == WAIT_ABANDONED;
  }
  void unlock() {
    if (held_) ReleaseMutex(handle_);
  }

 private:
  const HANDLE handle_;
  bool held_ = false;
};

}  // namespace

struct SharedBlock::Mapping {
  explicit Mapping(const char* name)
      : memory(ipc::open_or_create, name, ipc::read_write, size),
        region(memory, ipc::read_write, 0, size),
        mutex(name) {}

  ipc::windows_shared_memory memory;  // the name lasts while this handle is open
  ipc::mapped_region region;
  BlockMutex mutex;
};

SharedBlock::SharedBlock(const char* name) : mapping_(std::make_unique<Mapping>(name)) {}

SharedBlock::~SharedBlock() = default;

SharedBlock::Bytes SharedBlock::read() const {
  Bytes bytes;
  const std::lock_guard lock(mapping_->mutex);
  std::memcpy(bytes.data(), mapping_->region.get_address(), size);
  return bytes;
}

void SharedBlock::write(const Bytes& bytes) {
  const std::lock_guard lock(mapping_->mutex);
  std::memcpy(mapping_->region.get_address(), bytes.data(), size);
}

}  // namespace oct
