// Memory of the test process. One source per platform.
#pragma once

#include <cstddef>

namespace oct::test {

std::size_t residentMemory();  // bytes

}  // namespace oct::test
