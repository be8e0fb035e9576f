// What traces call threads.
#pragma once

#include <string>

namespace oct {

// Names the calling thread for as long as it lives. The text must live as long as the library.
void name_thread(const char* name) noexcept;

// The calling thread's: as it was named, else by the system, else empty.
std::string thread_name();

}  // namespace oct
