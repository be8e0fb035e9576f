#include "support/scarce_resources.h"

#include <atomic>
#include <cstdlib>
#include <limits>
#include <new>
#include <system_error>
#include <thread>

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

// Counts down to the thread that is not started.
constexpr int no_thread = std::numeric_limits<int>::max();
std::atomic<int> threads_before{no_thread};

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

ScarceThreads::ScarceThreads(int index) {
  threads_before = index;
}

ScarceThreads::~ScarceThreads() {
  threads_before = no_thread;
}

bool ScarceThreads::has_failed() const {
  return threads_before < 0;
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

// The linker routes the starts of threads here.
#define OCT_START_THREAD(prefix) \
  prefix##_ZNSt6thread15_M_start_threadESt10unique_ptrINS_6_StateESt14default_deleteIS1_EEPFvvE
extern "C" {
void OCT_START_THREAD(__real_)(std::thread* self, void* state, void (*depend)());
void OCT_START_THREAD(__wrap_)(std::thread* self, void* state, void (*depend)()) {
  using oct::test::threads_before;
  if (threads_before != oct::test::no_thread && threads_before-- == 0) {
    throw std::system_error(std::make_error_code(std::errc::resource_unavailable_try_again));
  }
  OCT_START_THREAD(__real_)(self, state, depend);
}
}
