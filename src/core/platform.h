// Small services of the operating system that the core needs. One source per platform.
#pragma once

#include <cstdint>
#include <string>

namespace oct {

// Identifier of the calling thread as the operating system gives it.
std::uint32_t current_thread_id();
std::uint32_t current_process_id();

// The name that the system knows the calling thread by; empty for none.
std::string system_thread_name();

// Whether a variable of the environment switches something on: it is set, and neither empty nor "0". May be asked while
// the library is being loaded.
bool is_switched_on(const char* variable);

// Whether the program wants nothing on its standard output but what it writes itself: the environment says so, or the
// program by a mark of its own, OCT_QUIET_PROGRAM. Asked while the library is being loaded, before anything of the
// program has run.
bool is_quiet_program();

// Text of the calling thread's last system error,
// "Error text could not be obtained." if there is none for it.
std::string system_error_text();

}  // namespace oct
