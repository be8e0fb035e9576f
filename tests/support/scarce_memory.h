// Allocations that fail. The program that links this has an operator new of its own.
#pragma once

#include <cstddef>

namespace oct::test {

// While it lives, allocations of the calling thread fail: those from the given one on, counted from 0, or that
// one alone.
class ScarceMemory {
 public:
  enum Extent { from_there_on, that_one_alone };

  explicit ScarceMemory(std::size_t first, Extent extent = from_there_on);
  ~ScarceMemory();
  ScarceMemory(const ScarceMemory&) = delete;
  ScarceMemory& operator=(const ScarceMemory&) = delete;

  bool has_failed() const;
};

}  // namespace oct::test
