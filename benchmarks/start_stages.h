// How far a process that was started by benchmark_start has come, and when.
#pragma once

#include <cstdio>
#include <cstdlib>
#include <ctime>

#include <sys/resource.h>

namespace oct::benchmark_start {

inline double monotonic_milliseconds() {
  timespec time{};
  clock_gettime(CLOCK_MONOTONIC, &time);
  return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) * 1e-6;
}

// Of all threads of the process, its start included.
inline double cpu_milliseconds() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return static_cast<double>(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) * 1e3 +
         static_cast<double>(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) * 1e-3;
}

class Stages {
 public:
  // The first argument is when the process was started, by monotonic_milliseconds().
  Stages(int argc, char** argv) : wall_(argc > 1 ? std::atof(argv[1]) : monotonic_milliseconds()) {}

  // Ends a stage: prints its name, wall and CPU milliseconds.
  void end(const char* name) {
    const double wall = monotonic_milliseconds();
    const double cpu = cpu_milliseconds();
    std::fprintf(stderr, "%s %.3f %.3f\n", name, wall - wall_, cpu - cpu_);
    leave_out();
  }

  // What was done since the last stage belongs to none.
  void leave_out() {
    wall_ = monotonic_milliseconds();
    cpu_ = cpu_milliseconds();
  }

 private:
  double wall_;
  double cpu_ = 0.0;
};

}  // namespace oct::benchmark_start
