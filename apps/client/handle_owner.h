// Handles that are cleared at the end of their owner's life.
#pragma once

#include <memory>
#include <type_traits>

namespace oct::app {

// Made from a handle of any library and the function that clears it.
template <class Handle>
using HandleOwner = std::unique_ptr<std::remove_pointer_t<Handle>, void (*)(Handle)>;

}  // namespace oct::app
