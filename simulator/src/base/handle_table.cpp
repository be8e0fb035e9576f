#include "base/handle_table.h"

#include <stdexcept>
#include <string>
#include <utility>

namespace oct::simulator {

void* HandleTable::add(std::shared_ptr<HandleObject> object) {
  const std::lock_guard lock(mutex_);
  auto* handle = reinterpret_cast<void*>(last_ + 1);
  objects_.emplace(handle, std::move(object));
  ++last_;
  return handle;
}

int HandleTable::count() const {
  const std::lock_guard lock(mutex_);
  return static_cast<int>(objects_.size());
}

std::shared_ptr<HandleObject> HandleTable::find_any(const void* handle) const {
  const std::lock_guard lock(mutex_);
  const auto place = objects_.find(handle);
  return place == objects_.end() ? nullptr : place->second;
}

bool HandleTable::erase(const void* handle) {
  const std::lock_guard lock(mutex_);
  return objects_.erase(handle) != 0;
}

void HandleTable::fail(const void* handle, const char* kind) {
  const std::string what = handle ? "Invalid handle" : "Null handle";
  throw std::invalid_argument(what + ", expected a " + kind + " handle. ");
}

}  // namespace oct::simulator
