// Objects of the whole process that outlive the static destructors: threads, the library's and the client's, may
// still use them while the process ends.
#pragma once

#include <cstddef>
#include <new>
#include <utility>

namespace oct {

// The one T of the process, made at the first call and never destroyed. When the library is unloaded or the
// process ends, T::close, if there is one, gives back what the object holds of the system; it must leave an
// object that can still be used, and must not wait: on Windows other threads have been stopped by then, perhaps
// inside the object.
template <class T, class... Arguments>
T& immortal(Arguments&&... arguments) {
  struct Closer {
    T& object;
    ~Closer() {
      if constexpr (requires { object.close(); }) object.close();
    }
  };
  alignas(T) static std::byte storage[sizeof(T)];
  static T& object = *::new (storage) T(std::forward<Arguments>(arguments)...);
  static const Closer closer{object};
  return object;
}

}  // namespace oct
