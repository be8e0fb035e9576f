#include "support/scarce_memory.h"

#include <cstdlib>
#include <limits>
#include <new>

namespace oct::test {
namespace {

constexpr std::size_t never = std::numeric_limits<std::size_t>::max();

struct Plan {
  std::size_t first = never;
  std::size_t last = never;
  std::size_t count = 0;
  bool failed = false;
};

thread_local Plan plan;

bool fails() {
  if (plan.first == never) return false;
  const std::size_t index = plan.count++;
  const bool now = index >= plan.first && index <= plan.last;
  plan.failed |= now;
  return now;
}

}  // namespace

ScarceMemory::ScarceMemory(std::size_t first, Extent extent) {
  plan = {first, extent == that_one_alone ? first : never, 0, false};
}

ScarceMemory::~ScarceMemory() {
  plan = {};
}

bool ScarceMemory::has_failed() const {
  return plan.failed;
}

}  // namespace oct::test

// All that a driver may pair with the operators delete below.
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  return oct::test::fails() ? nullptr : std::malloc(size ? size : 1);
}
void* operator new(std::size_t size) {
  void* const memory = operator new(size, std::nothrow);
  if (!memory) throw std::bad_alloc();
  return memory;
}
void operator delete(void* memory) noexcept {
  std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
  std::free(memory);
}
void operator delete(void* memory, const std::nothrow_t&) noexcept {
  std::free(memory);
}
