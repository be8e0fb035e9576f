// Allocations and starts of threads that fail. For programs that link oct_scarce_resources, which replaces operator
// new and what std::thread starts threads with.
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

// While it lives, one start of a thread fails, counted from 0 over all threads of the process.
class ScarceThreads {
 public:
  explicit ScarceThreads(int index);
  ~ScarceThreads();
  ScarceThreads(const ScarceThreads&) = delete;
  ScarceThreads& operator=(const ScarceThreads&) = delete;

  bool has_failed() const;
};

}  // namespace oct::test
