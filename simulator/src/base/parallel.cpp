#include "base/parallel.h"

#include <algorithm>
#include <cstdint>
#include <exception>
#include <thread>
#include <vector>

namespace oct::simulator {

void parallel_ranges(int count, int workers, const std::function<void(int, int)>& body) {
  if (workers <= 0) workers = std::max(1, static_cast<int>(std::thread::hardware_concurrency()));
  workers = std::min(workers, count);
  if (workers <= 1) {
    if (count > 0) body(0, count);
    return;
  }
  std::vector<std::exception_ptr> errors(workers);
  const auto part = [&](int worker) {
    const auto edge = [&](int i) { return static_cast<int>(static_cast<std::int64_t>(count) * i / workers); };
    try {
      body(edge(worker), edge(worker + 1));
    } catch (...) {
      errors[worker] = std::current_exception();
    }
  };
  {
    std::vector<std::jthread> threads;  // joins on the way out
    threads.reserve(workers - 1);
    for (int worker = 1; worker < workers; ++worker) threads.emplace_back(part, worker);
    part(0);
  }
  for (const auto& error : errors)
    if (error) std::rethrow_exception(error);
}

}  // namespace oct::simulator
