// Which variants there are and which are used.
#include <gtest/gtest.h>

#include "numbers.h"

namespace oct::vec::test {
namespace {

TEST(InstructionSets, EachBringsAllBeforeIt) {
  EXPECT_TRUE(isSupported(InstructionSet::scalar));
  EXPECT_TRUE(isSupported(InstructionSet::sse));  // every 64-bit processor has these two
  EXPECT_TRUE(isSupported(InstructionSet::sse2));
  if (isSupported(InstructionSet::avx)) {
    EXPECT_TRUE(isSupported(InstructionSet::sse41));
  }
}

TEST(InstructionSets, TablesAreComplete) {
  for (const InstructionSet set : {InstructionSet::scalar, InstructionSet::sse, InstructionSet::sse2,
                                   InstructionSet::sse41, InstructionSet::avx}) {
    const Routines routines = routinesOf(set);
    for (const void* const routine :
         std::bit_cast<std::array<const void*, sizeof routines / sizeof(void*)>>(routines))
      EXPECT_NE(routine, nullptr) << nameOf(set);
  }
}

// A set without a variant of its own takes the one before it, and a set never takes a later one.
TEST(InstructionSets, FallThroughToTheNearestBefore) {
  EXPECT_EQ(routinesOf(InstructionSet::sse).decibels, routinesOf(InstructionSet::scalar).decibels);
  EXPECT_NE(routinesOf(InstructionSet::sse).extremes, routinesOf(InstructionSet::scalar).extremes);
  EXPECT_NE(routinesOf(InstructionSet::sse2).decibels, routinesOf(InstructionSet::sse).decibels);
  EXPECT_EQ(routinesOf(InstructionSet::sse2).cropCopy, routinesOf(InstructionSet::scalar).cropCopy);
  EXPECT_EQ(routinesOf(InstructionSet::sse41).extremes, routinesOf(InstructionSet::sse).extremes);
  EXPECT_NE(routinesOf(InstructionSet::avx).extremes, routinesOf(InstructionSet::sse).extremes);
}

}  // namespace
}  // namespace oct::vec::test
