#include "core/exception.h"

#include <new>
#include <system_error>

#include "core/console.h"

namespace oct {

ErrorKind kind_of(const std::exception& error) noexcept {
  if (const auto* const own = dynamic_cast<const Exception*>(&error)) return own->kind();
  if (dynamic_cast<const std::logic_error*>(&error)) return ErrorKind::argument;
  if (dynamic_cast<const std::bad_alloc*>(&error)) return ErrorKind::memory;
  if (const auto* const system = dynamic_cast<const std::system_error*>(&error)) {
    if (system->code() == std::errc::resource_deadlock_would_occur) return ErrorKind::state;
    if (system->code() == std::errc::not_enough_memory) return ErrorKind::memory;
  }
  return ErrorKind::system;
}

void write_error_and_throw(const Exception& error) {
  write_error(error.what());
  throw Exception(error);
}

}  // namespace oct
