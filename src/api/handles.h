// The handles that clients hold. A handle is the address of its object; the table of those that live tells it from
// any other pointer.
#pragma once

#include <memory>
#include <stdexcept>
#include <utility>

namespace oct::api {

// Handles of one family are made by the same exports; each has a class of its own.
using Family = const void*;

template <class Object>
inline constexpr char family_tag = 0;
template <class Object>
constexpr Family family_of = &family_tag<Object>;

void add_handle(const void* handle, Family family);

// Throws std::invalid_argument "The handle is not valid. " for anything but a living handle of the family.
void check_handle(const void* handle, Family family);

// Puts the object under the client's control.
template <class Handle, class Object>
Handle* handle_of(std::unique_ptr<Object> object) {
  add_handle(object.get(), family_of<Object>);
  return reinterpret_cast<Handle*>(object.release());
}

// The object behind a handle; null for a null handle.
template <class Object, class Handle>
Object* find(Handle* handle) {
  if (handle) check_handle(handle, family_of<Object>);
  return reinterpret_cast<Object*>(handle);
}

// The object behind a handle. Throws std::invalid_argument, with the given text for a null handle.
template <class Object, class Handle>
Object& checked(Handle* handle, const char* null_text) {
  if (!handle) throw std::invalid_argument(null_text);
  return *find<Object>(handle);
}

// Takes an object back from the client, to be deleted. Of several threads that delete one handle, one gets here;
// the others are told that it is not valid. Until remove, calls with the handle go on to be accepted: functions of
// the client that an object's last work calls use it as ever.
class Deletion {
 public:
  Deletion(const void* handle, Family family);
  ~Deletion();  // without remove, the handle stays what it was
  Deletion(const Deletion&) = delete;
  Deletion& operator=(const Deletion&) = delete;

  void remove();  // from the table; before the memory is given back, which another object may get

 private:
  const void* handle_;
};

// Deletes the object of a living handle, after what has to come before while the handle is still good.
template <class Object, class Handle, class Before>
void delete_object(Handle* handle, Before&& before) {
  Deletion deletion(handle, family_of<Object>);
  auto* const object = reinterpret_cast<Object*>(handle);
  before(*object);
  deletion.remove();
  delete object;
}

template <class Object, class Handle>
void delete_object(Handle* handle) {
  delete_object<Object>(handle, [](Object&) {});
}

}  // namespace oct::api
