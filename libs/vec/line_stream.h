// Copies past the caches. For inclusion by the files of single instruction sets; everything here is local to
// them, for code that one set compiled must not stand in for another's.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace oct::vec {
namespace {

constexpr std::size_t line_floats = 16;

// Line::store(destination, source) writes one aligned cache line. Lines that the row fills in part are
// written as usual: half a line past the caches and the other half not would cost more than either. soon is
// read soon, as many floats of it.
template <class Line>
void stream_row(float* destination, const float* source, std::size_t count, const float* soon) {
  const std::size_t beyond = reinterpret_cast<std::uintptr_t>(destination) / sizeof(float) % line_floats;
  const std::size_t to_line = (line_floats - beyond) % line_floats;
  const std::size_t head = to_line < count ? to_line : count;
  std::size_t i = 0;
  for (; i < head; ++i) destination[i] = source[i];
  for (; i + line_floats <= count; i += line_floats) {
    __builtin_prefetch(soon + i);
    Line::store(destination + i, source + i);
  }
  for (; i < count; ++i) destination[i] = source[i];
}

// Line::finish() makes all that was stored visible to other threads.
template <class Line>
void copy_block(float* destination, const float* source, std::size_t count, bool streamed) {
  if (streamed) {
    stream_row<Line>(destination, source, count, source);
    Line::finish();
  } else if (count > 0) {
    std::memcpy(destination, source, count * sizeof(float));
  }
}

// Where rows are cropped, the processor's own prefetching runs on into what is left out.
template <class Line>
void copy_cropped(float* destination, const float* source, std::size_t a_scans, std::size_t source_samples,
                  std::size_t kept_samples, bool streamed) {
  if (kept_samples == 0) return;
  constexpr std::size_t rows_ahead = 2;
  for (std::size_t a_scan = 0; a_scan < a_scans; ++a_scan) {
    float* const to = destination + a_scan * kept_samples;
    const float* const from = source + a_scan * source_samples;
    if (streamed) {
      stream_row<Line>(to, from, kept_samples,
                       a_scan + rows_ahead < a_scans ? from + rows_ahead * source_samples : from);
    } else {
      std::memcpy(to, from, kept_samples * sizeof(float));
    }
  }
  if (streamed) Line::finish();
}

}  // namespace
}  // namespace oct::vec
