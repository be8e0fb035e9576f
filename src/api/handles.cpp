#include "api/handles.h"

#include <map>
#include <mutex>
#include <shared_mutex>

#include "core/immortal.h"

namespace oct::api {
namespace {

struct Entry {
  Family family;
  bool in_deletion = false;
};

class Table {
 public:
  void add(const void* handle, Family family) {
    const std::lock_guard lock(mutex_);
    entries_.try_emplace(handle, Entry{family});
  }

  void check(const void* handle, Family family) {
    const std::shared_lock lock(mutex_);
    find(handle, family);
  }

  void begin_deletion(const void* handle, Family family) {
    const std::lock_guard lock(mutex_);
    Entry& entry = find(handle, family);
    if (entry.in_deletion) refuse();
    entry.in_deletion = true;
  }

  void give_up_deletion(const void* handle) {
    const std::lock_guard lock(mutex_);
    entries_.at(handle).in_deletion = false;
  }

  void remove(const void* handle) {
    const std::lock_guard lock(mutex_);
    entries_.erase(handle);
  }

 private:
  [[noreturn]] static void refuse() { throw std::invalid_argument("The handle is not valid. "); }

  Entry& find(const void* handle, Family family) {
    const auto entry = entries_.find(handle);
    if (entry == entries_.end() || entry->second.family != family) refuse();
    return entry->second;
  }

  std::shared_mutex mutex_;
  std::map<const void*, Entry> entries_;
};

Table& table() {
  return immortal<Table>();
}

}  // namespace

void add_handle(const void* handle, Family family) {
  table().add(handle, family);
}

void check_handle(const void* handle, Family family) {
  table().check(handle, family);
}

Deletion::Deletion(const void* handle, Family family) : handle_(handle) {
  table().begin_deletion(handle, family);
}

Deletion::~Deletion() {
  if (handle_) table().give_up_deletion(handle_);
}

void Deletion::remove() {
  table().remove(std::exchange(handle_, nullptr));
}

}  // namespace oct::api
