// What the test process holds. One source per platform.
#pragma once

#include <cstddef>

namespace oct::test {

std::size_t resident_memory();  // bytes
std::size_t thread_count();
std::size_t handle_count();  // Windows: kernel handles; Linux: open files

// Whether memory in use tells of leaks.
constexpr bool measures_memory = OCT_MEASURES_MEMORY;

}  // namespace oct::test
