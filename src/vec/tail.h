// The odd ends of arrays. For inclusion by the files of single instruction sets, local to each like
// line_stream.h.
#pragma once

#include <cstddef>

namespace oct::vec {
namespace {

// The last few values go through a buffer of full width, so that they take the same way as the others.
template <class From, class To, class Kernel>
void forTail(To* destination, const From* source, std::size_t count, std::size_t fullWidth, Kernel kernel) {
  From values[16] = {};
  To results[16];
  for (std::size_t i = 0; i < count; ++i) values[i] = source[i];
  for (std::size_t i = 0; i < count; i += fullWidth) kernel(results + i, values + i);
  for (std::size_t i = 0; i < count; ++i) destination[i] = results[i];
}

}  // namespace
}  // namespace oct::vec
