// The guards of exports that work in the OpenGL context of the calling thread.
#pragma once

#include "api/guard.h"
#include "gl/context/client_state.h"

namespace oct::api {

// As guarded, for exports that draw: nothing that the client has set decides what they draw, and all of it
// is set again afterwards.
template <class Body>
auto guarded_drawing(const char* function, Body&& body) noexcept -> decltype(body()) {
  return guarded(function, [&] {
    const gl::ClientState state(gl::ClientState::Use::drawing);
    return body();
  });
}

// The same for exports that give data to OpenGL or take objects back.
template <class Body>
auto guarded_transfer(const char* function, Body&& body) noexcept -> decltype(body()) {
  return guarded(function, [&] {
    const gl::ClientState state(gl::ClientState::Use::transfer);
    return body();
  });
}

}  // namespace oct::api
