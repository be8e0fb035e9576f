// Copies past the caches. For inclusion by the files of single instruction sets; everything here is local to
// them, for code that one set compiled must not stand in for another's.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace oct::vec {
namespace {

constexpr std::size_t lineFloats = 16;

// Line::store(destination, source) writes one aligned cache line. Lines that the row fills in part are
// written as usual: half a line past the caches and the other half not would cost more than either. soon is
// read soon, as many floats of it.
template <class Line>
void streamRow(float* destination, const float* source, std::size_t count, const float* soon) {
  const std::size_t beyond = reinterpret_cast<std::uintptr_t>(destination) / sizeof(float) % lineFloats;
  const std::size_t toLine = (lineFloats - beyond) % lineFloats;
  const std::size_t head = toLine < count ? toLine : count;
  std::size_t i = 0;
  for (; i < head; ++i) destination[i] = source[i];
  for (; i + lineFloats <= count; i += lineFloats) {
    __builtin_prefetch(soon + i);
    Line::store(destination + i, source + i);
  }
  for (; i < count; ++i) destination[i] = source[i];
}

// Line::finish() makes all that was stored visible to other threads.
template <class Line>
void copyBlock(float* destination, const float* source, std::size_t count, std::size_t streamedBytes) {
  if (count * sizeof(float) >= streamedBytes) {
    streamRow<Line>(destination, source, count, source);
    Line::finish();
  } else if (count > 0) {
    std::memcpy(destination, source, count * sizeof(float));
  }
}

// Where rows are cropped, the processor's own prefetching runs on into what is left out.
template <class Line>
void copyCropped(float* destination, const float* source, std::size_t aScans, std::size_t sourceSamples,
                 std::size_t keptSamples, std::size_t streamedBytes) {
  if (keptSamples == 0) return;
  constexpr std::size_t rowsAhead = 2;
  const bool streamed = aScans * keptSamples * sizeof(float) >= streamedBytes;
  for (std::size_t aScan = 0; aScan < aScans; ++aScan) {
    float* const to = destination + aScan * keptSamples;
    const float* const from = source + aScan * sourceSamples;
    if (streamed) {
      streamRow<Line>(to, from, keptSamples,
                      aScan + rowsAhead < aScans ? from + rowsAhead * sourceSamples : from);
    } else {
      std::memcpy(to, from, keptSamples * sizeof(float));
    }
  }
  if (streamed) Line::finish();
}

}  // namespace
}  // namespace oct::vec
