// A client's callback that wants a pointer of the client's back, as a function without it.
#pragma once

namespace oct::api {

// Empty for a null callback.
template <class Function, class Callback>
Function with_user(Callback* callback, void* user) {
  if (!callback) return {};
  return [callback, user](auto... arguments) { callback(arguments..., user); };
}

}  // namespace oct::api
