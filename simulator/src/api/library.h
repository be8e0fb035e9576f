// What the C functions share: the handles, the pending error, the script of calls, and the frame around every
// call.
#pragma once

#include <exception>
#include <type_traits>
#include <utility>

#include "api/call_script.h"
#include "api/pending_error.h"
#include "base/handle_table.h"

namespace oct::simulator {

// The state of the whole library.
struct Library {
  HandleTable handles;
  PendingError error;
  CallScript& script;  // outlives the process, in which a call may hang until its end

  static Library& instance();
};

// Runs the body of a C function. An exception becomes the pending error, and the result zero or null.
template <typename Body>
auto framed(const char* function, Body&& body) noexcept {
  using Result = std::invoke_result_t<Body, HandleTable&>;
  auto& library = Library::instance();
  try {
    return std::forward<Body>(body)(library.handles);
  } catch (const std::exception& error) {
    library.error.set(function, error.what());
  } catch (...) {
    library.error.set(function, "Unknown error. ");
  }
  return Result();
}

// Runs the body of a device function, when and if the script lets it.
template <typename Body>
auto device_call(const char* function, Body&& body) noexcept {
  return framed(function, [&](HandleTable& handles) {
    Library::instance().script.on_call(function);
    return body(handles);
  });
}

}  // namespace oct::simulator
