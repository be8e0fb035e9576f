// Serialises frames and setters of one object, found by the object's address alone.
#pragma once

#include <cstddef>

namespace oct {

// Scoped guard. Throws std::invalid_argument "Cannot lock nullptr. " for null. A thread may lock an
// object again that it has locked already: a client's callback, called from a frame, may use
// setters of the rendered object.
class ObjectLock {
 public:
  explicit ObjectLock(const void* object);
  ~ObjectLock();
  ObjectLock(const ObjectLock&) = delete;
  ObjectLock& operator=(const ObjectLock&) = delete;

 private:
  const void* object_;
};

// Number of addresses that are locked or waited for at this moment; entries live no longer than their guards,
// so that destroyed objects leave nothing behind.
std::size_t locked_object_count();

}  // namespace oct
