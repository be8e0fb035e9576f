#include "core/object_lock.h"

#include <map>
#include <mutex>
#include <stdexcept>

namespace oct {
namespace {

struct Entry {
  std::recursive_mutex mutex;
  int users = 0;  // guards that hold or wait for the mutex; written under the table's mutex
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
  entry->mutex.lock();
}

ObjectLock::~ObjectLock() {
  const std::lock_guard lock(table().mutex);
  const auto entry = table().entries.find(object_);
  entry->second.mutex.unlock();
  if (--entry->second.users == 0) table().entries.erase(entry);
}

std::size_t lockedObjectCount() {
  const std::lock_guard lock(table().mutex);
  return table().entries.size();
}

}  // namespace oct
