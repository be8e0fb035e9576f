#include "core/platform.h"

#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace oct {

std::uint32_t currentThreadId() {
  return static_cast<std::uint32_t>(gettid());
}

std::string systemErrorText() {
  char buffer[256];
  // The GNU variant, which may return a text of its own instead of filling the buffer.
  const char* text = strerror_r(errno, buffer, sizeof buffer);
  return text ? text : "Error text could not be obtained.";
}

}  // namespace oct
