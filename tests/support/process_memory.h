// Memory of the test process. One source per platform.
#pragma once

#include <cstddef>

namespace oct::test {

std::size_t residentMemory();  // bytes

// Whether memory in use tells of leaks.
constexpr bool measuresMemory = OCT_MEASURES_MEMORY;

}  // namespace oct::test
