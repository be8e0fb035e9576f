// Calls of the library that throw its errors.
#pragma once

#include <stdexcept>
#include <type_traits>

#include "oct_rendering/oct_rendering.h"

namespace oct::app {

// What the library says about a call that failed.
class RenderingError : public std::runtime_error {
 public:
  RenderingError(OctErrorKind kind, const char* text) : std::runtime_error(text), kind_(kind) {}
  OctErrorKind kind() const { return kind_; }

 private:
  OctErrorKind kind_;
};

// Throws the pending error, if there is one.
void throw_pending_error();

// For destructors, which cannot report: what is left pending would be taken for an error of the next call.
void discard_pending_errors();

// Calls a function of the library and throws its error.
template <class Function, class... Arguments>
auto checked(Function function, Arguments... arguments) {
  if constexpr (std::is_void_v<decltype(function(arguments...))>) {
    function(arguments...);
    throw_pending_error();
  } else {
    const auto result = function(arguments...);
    throw_pending_error();
    return result;
  }
}

}  // namespace oct::app
