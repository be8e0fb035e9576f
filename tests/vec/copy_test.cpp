// Copies, whole and cropped, below and above the size from which they go past the caches.
#include <algorithm>
#include <numeric>

#include <gtest/gtest.h>

#include "vec/guarded_array.h"
#include "vec/numbers.h"

namespace oct::vec::test {
namespace {

class Copies : public testing::TestWithParam<InstructionSet> {
 protected:
  void SetUp() override {
    if (!is_supported(GetParam())) GTEST_SKIP() << "this processor has no " << name_of(GetParam());
  }
  Routines routines_ = routines_of(GetParam());
};

// Every place holds its own number, so that no shift and no repetition goes unseen.
GuardedArray<float> numbered(std::size_t count, std::size_t offset) {
  GuardedArray<float> array(count, offset);
  std::iota(array.data(), array.data() + count, 1.0F);
  return array;
}

void expect_copied(const Routines& routines, std::size_t count, std::size_t source_offset,
                   std::size_t offset) {
  GuardedArray<float> source = numbered(count, source_offset);
  GuardedArray<float> destination(count, offset);
  routines.copy(destination.data(), source.data(), count);
  EXPECT_TRUE(destination == source && destination.is_intact_around())
      << count << " floats from " << source_offset << " to " << offset;
}

void expect_cropped(const Routines& routines, std::size_t a_scans, std::size_t samples, std::size_t kept,
                    std::size_t offset) {
  GuardedArray<float> source = numbered(a_scans * samples, 3);
  GuardedArray<float> destination(a_scans * kept, offset);
  routines.crop_copy(destination.data(), source.data(), a_scans, samples, kept);
  std::size_t wrong = 0;
  for (std::size_t i = 0; i < a_scans; ++i) {
    const float* const a_scan = destination.data() + i * kept;
    wrong += !std::equal(a_scan, a_scan + kept, source.data() + i * samples);
  }
  EXPECT_TRUE(wrong == 0 && destination.is_intact_around())
      << wrong << " wrong, " << kept << " of " << samples << ", " << a_scans << " times, to " << offset;
}

TEST_P(Copies, SmallOnesOfAllLengthsAndAlignments) {
  for (std::size_t offset = 0; offset < 17; ++offset) {
    for (std::size_t count = 0; count < 40; ++count) expect_copied(routines_, count, 16 - offset, offset);
    for (const std::size_t kept : {0, 1, 3, 4, 15, 16, 17, 40})
      expect_cropped(routines_, 5, 40, kept, offset);
  }
  expect_cropped(routines_, 0, 40, 7, 0);
}

TEST_P(Copies, LargeOnesGoPastTheCaches) {
  constexpr std::size_t limit = streamed_bytes / sizeof(float);
  expect_copied(routines_, limit - 1, 0, 1);
  for (const std::size_t offset : {0, 1, 4, 7, 8, 15}) {
    expect_copied(routines_, limit + offset / 2, 1, offset);
  }
  // Rows shorter and longer than a cache line, whose ends fall anywhere into one.
  for (const std::size_t kept : {5, 16, 17, 100})
    expect_cropped(routines_, limit / kept + 1, kept + 1, kept, kept % 2 * 13);
  expect_cropped(routines_, 1, limit + 50, limit + 3, 7);
}

INSTANTIATE_TEST_SUITE_P(Variants, Copies,
                         testing::Values(InstructionSet::scalar, InstructionSet::sse, InstructionSet::avx),
                         [](const auto& test) { return name_of(test.param); });

}  // namespace
}  // namespace oct::vec::test
