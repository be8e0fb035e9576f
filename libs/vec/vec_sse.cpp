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
    for (std::size_t i = 0; i < lineFloats; i += Four::width)
      _mm_stream_ps(destination + i, _mm_loadu_ps(source + i));
  }
  static void finish() { _mm_sfence(); }
};

void copySse(float* destination, const float* source, std::size_t count) {
  copyBlock<Line>(destination, source, count, streamedBytes);
}

}  // namespace

void setSse(Routines& routines) {
  routines.copy = copySse;
  routines.extremes = extremesWide<Four>;
  routines.countNotAbove = countNotAboveWide<Four>;
  routines.powers = powersWide<Four>;
}

}  // namespace oct::vec
