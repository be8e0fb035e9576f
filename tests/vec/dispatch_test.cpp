// Which variants there are and which are used.
#include <gtest/gtest.h>

#include "vec/numbers.h"

namespace oct::vec::test {
namespace {

TEST(InstructionSets, EachBringsAllBeforeIt) {
  EXPECT_TRUE(is_supported(InstructionSet::scalar));
  EXPECT_TRUE(is_supported(InstructionSet::sse));  // every 64-bit processor has these two
  EXPECT_TRUE(is_supported(InstructionSet::sse2));
  if (is_supported(InstructionSet::avx)) {
    EXPECT_TRUE(is_supported(InstructionSet::sse41));
  }
}

TEST(InstructionSets, TablesAreComplete) {
  for (const InstructionSet set : {InstructionSet::scalar, InstructionSet::sse, InstructionSet::sse2,
                                   InstructionSet::sse41, InstructionSet::avx}) {
    const Routines routines = routines_of(set);
    for (const void* const routine :
         std::bit_cast<std::array<const void*, sizeof routines / sizeof(void*)>>(routines))
      EXPECT_NE(routine, nullptr) << name_of(set);
  }
}

// A set without a variant of its own takes the one before it, and a set never takes a later one.
TEST(InstructionSets, FallThroughToTheNearestBefore) {
  EXPECT_EQ(routines_of(InstructionSet::sse).decibels, routines_of(InstructionSet::scalar).decibels);
  EXPECT_NE(routines_of(InstructionSet::sse).extremes, routines_of(InstructionSet::scalar).extremes);
  EXPECT_NE(routines_of(InstructionSet::sse2).decibels, routines_of(InstructionSet::sse).decibels);
  EXPECT_EQ(routines_of(InstructionSet::sse2).crop_copy, routines_of(InstructionSet::scalar).crop_copy);
  EXPECT_EQ(routines_of(InstructionSet::sse41).extremes, routines_of(InstructionSet::sse).extremes);
  EXPECT_NE(routines_of(InstructionSet::avx).extremes, routines_of(InstructionSet::sse).extremes);
}

}  // namespace
}  // namespace oct::vec::test
