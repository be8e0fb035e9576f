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
void throwPendingError();

// For destructors, which cannot report: what is left pending would be taken for an error of the next call.
void discardPendingErrors();

// Calls a function of the library and throws its error.
template <class Function, class... Arguments>
auto checked(Function function, Arguments... arguments) {
  if constexpr (std::is_void_v<decltype(function(arguments...))>) {
    function(arguments...);
    throwPendingError();
  } else {
    const auto result = function(arguments...);
    throwPendingError();
    return result;
  }
}

}  // namespace oct::app
