// Writes floats one after the other past the caches, in whole cache lines only: half a line written past the
// caches, the other half not, costs more than either. For inclusion by the files of single instruction sets;
// everything here is local to them, for code that one set compiled must not stand in for another's.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace oct::vec {
namespace {

constexpr std::size_t lineFloats = 16;

// Line::store(destination, source) writes one aligned line; Line::finish() makes all visible to other
// threads.
template <class Line>
class LineStream {
 public:
  explicit LineStream(float* destination) : next_(destination) {
    const std::size_t beyond = reinterpret_cast<std::uintptr_t>(destination) / sizeof(float) % lineFloats;
    unaligned_ = beyond > 0 ? lineFloats - beyond : 0;
  }

  void write(const float* source, std::size_t count) {
    if (unaligned_ > 0) {
      const std::size_t part = least(unaligned_, count);
      std::memcpy(next_, source, part * sizeof(float));
      next_ += part;
      unaligned_ -= part;
      source += part;
      count -= part;
    }
    if (pending_ > 0) {
      const std::size_t part = least(lineFloats - pending_, count);
      std::memcpy(line_ + pending_, source, part * sizeof(float));
      pending_ += part;
      source += part;
      count -= part;
      if (pending_ < lineFloats) return;
      Line::store(next_, line_);
      next_ += lineFloats;
      pending_ = 0;
    }
    for (; count >= lineFloats; count -= lineFloats) {
      Line::store(next_, source);
      next_ += lineFloats;
      source += lineFloats;
    }
    std::memcpy(line_, source, count * sizeof(float));
    pending_ = count;
  }

  void finish() {
    std::memcpy(next_, line_, pending_ * sizeof(float));
    Line::finish();
  }

 private:
  static std::size_t least(std::size_t a, std::size_t b) { return a < b ? a : b; }

  float* next_;
  std::size_t unaligned_;  // floats up to the first whole line
  std::size_t pending_ = 0;
  float line_[lineFloats];
};

template <class Line>
void streamCopy(float* destination, const float* source, std::size_t count) {
  LineStream<Line> stream(destination);
  stream.write(source, count);
  stream.finish();
}

template <class Line>
void streamCropCopy(float* destination, const float* source, std::size_t aScans, std::size_t sourceSamples,
                    std::size_t keptSamples) {
  LineStream<Line> stream(destination);
  for (std::size_t aScan = 0; aScan < aScans; ++aScan)
    stream.write(source + aScan * sourceSamples, keptSamples);
  stream.finish();
}

}  // namespace
}  // namespace oct::vec
