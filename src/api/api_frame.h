// The frame of every exported function: handle check and catch handler.
#pragma once

#include <stdexcept>

namespace oct::api {

// Posts the error to the error store and writes it to the standard error stream.
void reportError(const char* function, const std::exception& error) noexcept;

// Writes the error to the standard error stream only.
void reportUnposted(const std::exception& error) noexcept;

// Runs the body of the named export. An exception is reported and the export's neutral result returned: null,
// 0, false or nothing.
template <class Body>
auto frame(const char* function, Body&& body) -> decltype(body()) {
  try {
    return body();
  } catch (const std::exception& error) {
    reportError(function, error);
    return decltype(body())();
  }
}

// The same for exports whose errors stay out of the error store.
template <class Body>
void unpostedFrame(Body&& body) {
  try {
    body();
  } catch (const std::exception& error) {
    reportUnposted(error);
  }
}

// The object behind a handle. Null is the only bad handle that can be told.
template <class Object, class Handle>
Object& checked(Handle* handle, const char* message) {
  if (!handle) throw std::invalid_argument(message);
  return *reinterpret_cast<Object*>(handle);
}

template <class Handle, class Object>
Handle* handleOf(Object* object) {
  return reinterpret_cast<Handle*>(object);
}

}  // namespace oct::api
