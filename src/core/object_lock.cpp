#include "core/object_lock.h"

#include <condition_variable>
#include <cstdint>
#include <map>
#include <mutex>
#include <stdexcept>
#include <thread>

namespace oct {
namespace {

// First come, first served: a render loop that locks its object again right after a frame must not keep
// everybody else waiting, which a plain mutex allows.
class FairRecursiveLock {
 public:
  void lock() {
    std::unique_lock lock(mutex_);
    if (depth_ > 0 && owner_ == std::this_thread::get_id()) {
      ++depth_;
      return;
    }
    const std::uint64_t ticket = next_ticket_++;
    turn_.wait(lock, [&] { return depth_ == 0 && serving_ == ticket; });
    owner_ = std::this_thread::get_id();
    depth_ = 1;
  }

  void unlock() {
    {
      const std::lock_guard lock(mutex_);
      if (--depth_ > 0) return;
      ++serving_;
    }
    turn_.notify_all();
  }

 private:
  std::mutex mutex_;
  std::condition_variable turn_;
  std::thread::id owner_;
  int depth_ = 0;
  std::uint64_t next_ticket_ = 0;
  std::uint64_t serving_ = 0;
};

struct Entry {
  FairRecursiveLock lock;
  int users = 0;  // guards that hold or wait for the lock; written under the table's mutex
};

struct Table {
  std::mutex mutex;
  std::map<const void*, Entry> entries;
};

Table& table() {
  static Table instance;
  return instance;
}

}  // namespace

ObjectLock::ObjectLock(const void* object) : object_(object) {
  if (!object) throw std::invalid_argument("Cannot lock nullptr. ");
  Entry* entry = nullptr;
  {
    const std::lock_guard lock(table().mutex);
    entry = &table().entries[object];
    ++entry->users;
  }
  entry->lock.lock();
}

ObjectLock::~ObjectLock() {
  const std::lock_guard lock(table().mutex);
  const auto entry = table().entries.find(object_);
  entry->second.lock.unlock();
  if (--entry->second.users == 0) table().entries.erase(entry);
}

std::size_t locked_object_count() {
  const std::lock_guard lock(table().mutex);
  return table().entries.size();
}

}  // namespace oct
