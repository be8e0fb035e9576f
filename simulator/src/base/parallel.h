// Spreads independent work over the processor's cores.
#pragma once

#include <functional>

namespace oct::simulator {

// Splits [0, count) into consecutive ranges, one per worker thread, and waits until all are done.
// The results must not depend on the split. The first exception of a worker is thrown again here.
// workers: number of threads; 0 or less means one per core
// body: called as body(begin, end)
void parallel_ranges(int count, int workers, const std::function<void(int, int)>& body);

}  // namespace oct::simulator
