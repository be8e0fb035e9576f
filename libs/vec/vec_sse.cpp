// Four floats at a time.
#include <xmmintrin.h>

#include "vec/four.h"
#include "vec/line_stream.h"
#include "vec/routines.h"
#include "vec/wide.h"

namespace oct::vec {
namespace {

struct Line {
  static void store(float* destination, const float* source) {
    for (std::size_t i = 0; i < line_floats; i += Four::width)
      _mm_stream_ps(destination + i, _mm_loadu_ps(source + i));
  }
  static void finish() { _mm_sfence(); }
};

void copy_sse(float* destination, const float* source, std::size_t count) {
  copy_block<Line>(destination, source, count, count * sizeof(float) >= streamed_bytes);
}

}  // namespace

void set_sse(Routines& routines) {
  routines.copy = copy_sse;
  routines.extremes = extremes_wide<Four>;
  routines.raise = raise_wide<Four>;
  routines.count_not_above = count_not_above_wide<Four>;
  routines.powers = powers_wide<Four>;
}

}  // namespace oct::vec
