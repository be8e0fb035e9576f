// Calls of the library that throw its errors.
#pragma once

#include <stdexcept>
#include <type_traits>

namespace oct::app {

// What the library says about a call that failed.
class RenderingError : public std::runtime_error {
  using runtime_error::runtime_error;
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
