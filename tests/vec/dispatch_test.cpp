// Which variants there are and which are used.
#include <gtest/gtest.h>

#include "vec/numbers.h"

namespace oct::vec::test {
namespace {

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
