#include "core/object_lock.h"

#include <condition_variable>
#include <mutex>
#include <stdexcept>

#include "core/immortal.h"

namespace oct {

// All guards, linked in the order in which they came. First come, first served: a render loop that locks its
// object again right after a frame must not keep everybody else waiting, which a plain mutex allows. Guards are
// few, so that the list is walked and no table is kept.
class ObjectLocks {
 public:
  void enter(ObjectLock& guard) {
    std::unique_lock lock(mutex_);
    ObjectLock* const own = held_by_its_thread(guard);
    insert_behind(own ? own : last_, guard);
    if (!own) turn_.wait(lock, [&] { return !others_before(guard); });
  }

  void leave(ObjectLock& guard) {
    {
      const std::lock_guard lock(mutex_);
      (guard.previous_ ? guard.previous_->next_ : first_) = guard.next_;
      (guard.next_ ? guard.next_->previous_ : last_) = guard.previous_;
    }
    turn_.notify_all();
  }

  std::size_t count() {
    const std::lock_guard lock(mutex_);
    std::size_t result = 0;
    for (const ObjectLock* guard = first_; guard; guard = guard->next_) ++result;
    return result;
  }

 private:
  // A thread that waits makes no other guard, so what it has in the list it holds.
  ObjectLock* held_by_its_thread(const ObjectLock& guard) const {
    ObjectLock* other = first_;
    while (other && (other->object_ != guard.object_ || other->owner_ != guard.owner_)) other = other->next_;
    return other;
  }

  static bool others_before(const ObjectLock& guard) {
    const ObjectLock* other = guard.previous_;
    while (other && other->object_ != guard.object_) other = other->previous_;
    return other != nullptr;
  }

  void insert_behind(ObjectLock* previous, ObjectLock& guard) {
    guard.previous_ = previous;
    guard.next_ = previous ? previous->next_ : first_;
    (guard.previous_ ? guard.previous_->next_ : first_) = &guard;
    (guard.next_ ? guard.next_->previous_ : last_) = &guard;
  }

  std::mutex mutex_;
  std::condition_variable turn_;
  ObjectLock* first_ = nullptr;
  ObjectLock* last_ = nullptr;
};

namespace {

ObjectLocks& object_locks() {
  return immortal<ObjectLocks>();
}

}  // namespace

ObjectLock::ObjectLock(const void* object) : object_(object) {
  if (!object) throw std::invalid_argument("Cannot lock nullptr. ");
  object_locks().enter(*this);
}

ObjectLock::~ObjectLock() {
  object_locks().leave(*this);
}

std::size_t object_lock_count() {
  return object_locks().count();
}

}  // namespace oct
