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
    EXPECT_NE(routines.copy, nullptr) << nameOf(set);
    EXPECT_NE(routines.cropCopy, nullptr) << nameOf(set);
    EXPECT_NE(routines.extremes, nullptr) << nameOf(set);
    EXPECT_NE(routines.countNotAbove, nullptr) << nameOf(set);
    EXPECT_NE(routines.subtract, nullptr) << nameOf(set);
    EXPECT_NE(routines.powers, nullptr) << nameOf(set);
    EXPECT_NE(routines.decibels, nullptr) << nameOf(set);
    EXPECT_NE(routines.toUint16, nullptr) << nameOf(set);
  }
}

// A set without a variant of its own takes the one before it, and a set never takes a later one.
TEST(InstructionSets, FallThroughToTheNearestBefore) {
  const Routines scalar = routinesOf(InstructionSet::scalar);
  const Routines sse = routinesOf(InstructionSet::sse);
  const Routines sse2 = routinesOf(InstructionSet::sse2);
  EXPECT_EQ(sse.decibels, scalar.decibels);
  EXPECT_EQ(sse.subtract, scalar.subtract);
  EXPECT_NE(sse.extremes, scalar.extremes);
  EXPECT_NE(sse2.decibels, sse.decibels);
  EXPECT_EQ(sse2.extremes, sse.extremes);
  EXPECT_EQ(sse2.copy, sse.copy);
  EXPECT_EQ(sse2.cropCopy, scalar.cropCopy);
  EXPECT_EQ(routinesOf(InstructionSet::sse41).extremes, sse.extremes);
  EXPECT_NE(routinesOf(InstructionSet::avx).extremes, sse.extremes);
}

}  // namespace
}  // namespace oct::vec::test
