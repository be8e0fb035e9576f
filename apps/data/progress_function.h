// How those who wait for a long work learn how far it is.
#pragma once

#include <cstddef>
#include <functional>

namespace oct::app {

// Called now and then; done and total in samples.
using ProgressFunction = std::function<void(std::size_t done, std::size_t total)>;

inline void no_progress(std::size_t, std::size_t) {}

}  // namespace oct::app
