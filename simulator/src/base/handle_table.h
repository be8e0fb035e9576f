// The objects behind the handles.
#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
#include <unordered_map>

namespace oct::simulator {

// Base of everything a handle can stand for. A kind of object has a `static constexpr const char* name`.
class HandleObject {
 public:
  virtual ~HandleObject() = default;
};

// Gives out handles and finds the objects behind them. Handles are numbers in the guise of pointers, never
// used twice, so that a cleared handle is recognised whatever was created since. An object that is cleared
// while a call works with it lives until that call is over.
class HandleTable {
 public:
  // Returns the new object's handle
  void* add(std::shared_ptr<HandleObject> object);

  // Finds an object; throws std::invalid_argument if the handle does not stand for one of this kind.
  template <typename Object>
  std::shared_ptr<Object> find(const void* handle) const {
    auto object = std::dynamic_pointer_cast<Object>(find_any(handle));
    if (!object) fail(handle, Object::name);
    return object;
  }

  // Takes an object out of the table; throws as find() does.
  template <typename Object>
  std::shared_ptr<Object> remove(const void* handle) {
    auto object = find<Object>(handle);
    // Of two threads that clear the same handle, the later one comes too late.
    if (!erase(handle)) fail(handle, Object::name);
    return object;
  }

  int count() const;

 private:
  std::shared_ptr<HandleObject> find_any(const void* handle) const;
  bool erase(const void* handle);
  [[noreturn]] static void fail(const void* handle, const char* kind);

  mutable std::mutex mutex_;
  std::uintptr_t last_ = 0;
  std::unordered_map<const void*, std::shared_ptr<HandleObject>> objects_;
};

}  // namespace oct::simulator
