// A B-scan in memory.
#pragma once

#include <cstddef>
#include <vector>

namespace oct::app {

// Depth is fastest, as the library wants it: sample z of A-scan x lies at x * depth + z.
struct Image {
  std::size_t depth = 0;
  std::size_t ascans = 0;
  std::vector<float> samples;
};

}  // namespace oct::app
