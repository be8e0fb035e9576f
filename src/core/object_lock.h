// Serialises frames and setters of one object, found by the object's address alone.
#pragma once

#include <cstddef>
#include <thread>

namespace oct {

// Scoped guard. Throws std::invalid_argument "Cannot lock nullptr. " for null. A thread may lock an
// object again that it has locked already: a client's callback, called from a frame, may use
// setters of the rendered object. Needs no memory beside itself, so that nothing is left undeleted when there is
// none.
class ObjectLock {
 public:
  explicit ObjectLock(const void* object);
  ~ObjectLock();
  ObjectLock(const ObjectLock&) = delete;
  ObjectLock& operator=(const ObjectLock&) = delete;

 private:
  friend class ObjectLocks;

  const void* const object_;
  const std::thread::id owner_ = std::this_thread::get_id();
  // In the list of all guards of the process.
  ObjectLock* next_ = nullptr;
  ObjectLock* previous_ = nullptr;
};

// Number of guards that live at this moment, whether they hold their object or wait for it.
std::size_t object_lock_count();

}  // namespace oct
