// What the test process holds. One source per platform.
#pragma once

#include <cstddef>

namespace oct::test {

std::size_t residentMemory();  // bytes
std::size_t threadCount();
std::size_t handleCount();  // Windows: kernel handles; Linux: open files

// Whether memory in use tells of leaks.
constexpr bool measuresMemory = OCT_MEASURES_MEMORY;

}  // namespace oct::test
