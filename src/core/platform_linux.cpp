#include "core/platform.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>

#include <pthread.h>
#include <unistd.h>

// Of the program, if it has one. The linker lets a program export what the libraries that it is linked with look for.
extern "C" [[gnu::weak, gnu::visibility("default")]] const int oct_rendering_quiet;

namespace oct {

std::uint32_t current_thread_id() {
  return static_cast<std::uint32_t>(gettid());
}

bool is_switched_on(const char* variable) {
  const char* const value = std::getenv(variable);
  return value && *value && std::strcmp(value, "0") != 0;
}

bool is_quiet_program() {
  if (is_switched_on("OCT_RENDERING_QUIET")) return true;
  return &oct_rendering_quiet && oct_rendering_quiet != 0;
}

std::uint32_t current_process_id() {
  return static_cast<std::uint32_t>(getpid());
}

std::string system_thread_name() {
  char name[16] = "";
  return pthread_getname_np(pthread_self(), name, sizeof name) == 0 ? name : "";
}

std::string system_error_text() {
  char buffer[256];
  // The GNU variant, which may return a text of its own instead of filling the buffer.
  const char* text = strerror_r(errno, buffer, sizeof buffer);
  return text ? text : "Error text could not be obtained.";
}

}  // namespace oct
