// Timing marks for the profiler of a host.
#pragma once

#include <cstdint>

namespace oct {

// A host's functions; each may be null.
struct TimingFunctions {
  using Function = void (*)(const char* name, unsigned int thread, unsigned long long nanoseconds,
                            void* user);

  Function begin = nullptr;
  Function end = nullptr;
  Function instant = nullptr;
  void* user = nullptr;

  bool any() const { return begin || end || instant; }
};

// Replaces those before: of what they have heard begin they hear the end before this returns, on the calling thread, and
// no call of them is running or comes afterwards. Within a call of a listener they are replaced at once without either,
// because it would wait for itself.
void set_timing_functions(const TimingFunctions& functions);

}  // namespace oct
