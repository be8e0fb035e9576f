#include "vec/vec.h"

#include "vec/routines.h"

namespace oct::vec {
namespace {

constexpr InstructionSet allSets[] = {InstructionSet::scalar, InstructionSet::sse, InstructionSet::sse2,
                                      InstructionSet::sse41, InstructionSet::avx};

constexpr void (*setters[])(Routines&) = {setScalar, setSse, setSse2, setSse41, setAvx};

// What the processor can do is asked once.
const Routines& best() {
  static const Routines routines = [] {
    InstructionSet widest = InstructionSet::scalar;
    for (const InstructionSet set : allSets) {
      if (isSupported(set)) widest = set;
    }
    return routinesOf(widest);
  }();
  return routines;
}

}  // namespace

bool isSupported(InstructionSet set) {
  __builtin_cpu_init();
  switch (set) {
    case InstructionSet::sse:
      return __builtin_cpu_supports("sse") != 0;
    case InstructionSet::sse2:
      return __builtin_cpu_supports("sse2") != 0;
    case InstructionSet::sse41:
      return __builtin_cpu_supports("sse4.1") != 0;
    case InstructionSet::avx:
      return __builtin_cpu_supports("avx") != 0;
    default:
      return true;
  }
}

Routines routinesOf(InstructionSet set) {
  Routines routines{};
  for (const InstructionSet each : allSets) {
    if (each <= set) setters[static_cast<int>(each)](routines);
  }
  return routines;
}

void copy(float* destination, const float* source, std::size_t count) {
  best().copy(destination, source, count);
}

void cropCopy(float* destination, const float* source, std::size_t aScans, std::size_t sourceSamples,
              std::size_t keptSamples) {
  best().cropCopy(destination, source, aScans, sourceSamples, keptSamples);
}

Extremes extremes(const float* values, std::size_t count) {
  return best().extremes(values, count);
}

std::size_t countNotAbove(const float* values, std::size_t count, float limit) {
  return best().countNotAbove(values, count, limit);
}

void subtract(float* destination, const std::uint16_t* counts, const float* background, std::size_t count) {
  best().subtract(destination, counts, background, count);
}

void powers(float* destination, const float* complexNumbers, std::size_t count) {
  best().powers(destination, complexNumbers, count);
}

void decibels(float* destination, const float* powers, std::size_t count, float least) {
  best().decibels(destination, powers, count, least);
}

void toUint16(std::uint16_t* destination, const float* values, std::size_t count, float factor,
              float offset) {
  best().toUint16(destination, values, count, factor, offset);
}

}  // namespace oct::vec
