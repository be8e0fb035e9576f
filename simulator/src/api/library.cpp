#include "api/library.h"

#include <cstddef>
#include <new>

namespace oct::simulator {

namespace {

CallScript& make_script() {
  alignas(CallScript) static std::byte storage[sizeof(CallScript)];
  return *::new (storage) CallScript;
}

}  // namespace

Library& Library::instance() {
  static Library library{.handles = {}, .error = {}, .script = make_script()};
  return library;
}

}  // namespace oct::simulator
