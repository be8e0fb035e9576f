// Every variant against the plain loop, bit for bit; the plain loop against exact arithmetic.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "guarded_array.h"
#include "numbers.h"

namespace oct::vec::test {
namespace {

constexpr float kLeast = 1e-6F;
constexpr std::size_t kLengths = 40;  // five vectors of the widest kind
constexpr std::size_t kOffsets = 9;

class Variants : public testing::TestWithParam<InstructionSet> {
 protected:
  void SetUp() override {
    if (!isSupported(GetParam())) GTEST_SKIP() << "this processor has no " << nameOf(GetParam());
  }

  // Runs work(routines, destination) with the plain loops and with the variant, for all lengths and
  // alignments.
  template <class To, class Work>
  void compare(Work work) {
    for (std::size_t count = 0; count < kLengths; ++count) {
      for (std::size_t offset = 0; offset < kOffsets; ++offset) {
        GuardedArray<To> expected(count, offset);
        GuardedArray<To> found(count, offset);
        work(scalar_, expected, count, offset);
        work(variant_, found, count, offset);
        EXPECT_TRUE(found == expected) << count << " values at " << offset;
        EXPECT_TRUE(found.isIntactAround()) << count << " values at " << offset;
      }
    }
  }

  Routines scalar_ = routinesOf(InstructionSet::scalar);
  Routines variant_ = routinesOf(GetParam());
};

GuardedArray<float> anyFloats(std::size_t count, std::size_t offset, unsigned seed) {
  Numbers numbers(seed);
  GuardedArray<float> values(count, offset);
  for (std::size_t i = 0; i < count; ++i) values[i] = numbers.any();
  return values;
}

TEST_P(Variants, Extremes) {
  for (unsigned seed = 0; seed < 20; ++seed) {
    for (std::size_t count = 0; count < kLengths; ++count) {
      for (std::size_t offset = 0; offset < kOffsets; ++offset) {
        auto values = anyFloats(count, offset, seed);
        const vec::Extremes expected = scalar_.extremes(values.data(), count);
        const vec::Extremes found = variant_.extremes(values.data(), count);
        EXPECT_EQ(found.lowest, expected.lowest) << count << " values at " << offset;
        EXPECT_EQ(found.highest, expected.highest) << count << " values at " << offset;
      }
    }
  }
}

// The one extreme value at each place in turn, among NaN.
TEST_P(Variants, ExtremesAreFoundAtEveryPlace) {
  for (std::size_t count = 1; count < kLengths; ++count) {
    for (std::size_t place = 0; place < count; ++place) {
      std::vector<float> values(count, std::numeric_limits<float>::quiet_NaN());
      values[place] = -2.0F;
      values[(place + 1) % count] = 3.0F;
      const vec::Extremes found = variant_.extremes(values.data(), count);
      EXPECT_EQ(found.lowest, count > 1 ? -2.0F : 3.0F);
      EXPECT_EQ(found.highest, 3.0F);
    }
  }
}

TEST_P(Variants, CountNotAbove) {
  constexpr float infinity = std::numeric_limits<float>::infinity();
  for (std::size_t count = 0; count < kLengths; ++count) {
    for (std::size_t offset = 0; offset < kOffsets; ++offset) {
      auto values = anyFloats(count, offset, static_cast<unsigned>(count));
      for (const float limit : {-infinity, -1.0F, -0.0F, 0.0F, 0.5F, 65535.0F, infinity,
                                std::numeric_limits<float>::quiet_NaN()}) {
        EXPECT_EQ(variant_.countNotAbove(values.data(), count, limit),
                  scalar_.countNotAbove(values.data(), count, limit))
            << count << " values at " << offset << ", limit " << limit;
      }
    }
  }
}

TEST_P(Variants, Subtract) {
  compare<float>([](const Routines& routines, auto& destination, std::size_t count, std::size_t offset) {
    Numbers numbers(static_cast<unsigned>(count));
    GuardedArray<std::uint16_t> counts(count, offset + 1);
    for (std::size_t i = 0; i < count; ++i) counts[i] = numbers.count();
    auto background = anyFloats(count, offset + 2, 7);
    routines.subtract(destination.data(), counts.data(), background.data(), count);
  });
}

TEST_P(Variants, Powers) {
  compare<float>([](const Routines& routines, auto& destination, std::size_t count, std::size_t offset) {
    Numbers numbers(static_cast<unsigned>(count));
    GuardedArray<float> fields(2 * count, offset + 1);
    for (std::size_t i = 0; i < 2 * count; ++i) fields[i] = numbers.any();
    // The sign of NaN depends on which of two NaN an addition meets first.
    for (std::size_t i = 0; i < 2 * count; ++i) fields[i] = std::isnan(fields[i]) ? 3.0F : fields[i];
    routines.powers(destination.data(), fields.data(), count);
  });
}

TEST_P(Variants, Decibels) {
  for (unsigned seed = 0; seed < 10; ++seed) {
    compare<float>(
        [seed](const Routines& routines, auto& destination, std::size_t count, std::size_t offset) {
          auto powers = anyFloats(count, offset + 1, seed);
          routines.decibels(destination.data(), powers.data(), count, seed % 2 == 0 ? kLeast : 1.5e-38F);
        });
  }
}

TEST_P(Variants, DecibelsInPlace) {
  compare<float>([](const Routines& routines, auto& destination, std::size_t count, std::size_t) {
    Numbers numbers(static_cast<unsigned>(count));
    for (std::size_t i = 0; i < count; ++i) destination[i] = numbers.any();
    routines.decibels(destination.data(), destination.data(), count, kLeast);
  });
}

TEST_P(Variants, ToUint16) {
  for (unsigned seed = 0; seed < 10; ++seed) {
    compare<std::uint16_t>(
        [seed](const Routines& routines, auto& destination, std::size_t count, std::size_t offset) {
          Numbers numbers(seed);
          GuardedArray<float> values(count, offset + 1);
          for (std::size_t i = 0; i < count; ++i) {
            values[i] = seed % 2 == 0 ? numbers.any() : numbers.between(-0.1F, 2.0F);
          }
          const bool plain = seed % 4 == 0;
          routines.toUint16(destination.data(), values.data(), count, plain ? 1.0F : 38400.0F,
                            plain ? 0.0F : 1280.0F);
        });
  }
}

INSTANTIATE_TEST_SUITE_P(Sets, Variants, testing::ValuesIn(vectorSets),
                         [](const auto& test) { return nameOf(test.param); });

TEST(ExtremesAndQuantile, IgnoreNanAndKnowTheEmptyArray) {
  constexpr float infinity = std::numeric_limits<float>::infinity();
  const float nan = std::numeric_limits<float>::quiet_NaN();
  const vec::Extremes none = extremes(nullptr, 0);
  EXPECT_EQ(none.lowest, infinity);
  EXPECT_EQ(none.highest, -infinity);
  EXPECT_TRUE(std::isnan(quantile(nullptr, 0, 0.5)));
  EXPECT_TRUE(std::isnan(quantile(&nan, 1, 0.5)));
  const vec::Extremes noNumber = extremes(&nan, 1);
  EXPECT_EQ(noNumber.lowest, infinity);
  EXPECT_EQ(noNumber.highest, -infinity);
  const std::vector<float> values{nan, 4.0F, -1.0F, nan, infinity, 2.0F};
  const vec::Extremes found = extremes(values.data(), values.size());
  EXPECT_EQ(found.lowest, -1.0F);
  EXPECT_EQ(found.highest, infinity);
}

// Against sorting, with repeated values, all special ones, and any order.
TEST(Quantile, IsTheValueAtItsRank) {
  for (unsigned seed = 0; seed < 60; ++seed) {
    Numbers numbers(seed);
    std::vector<float> values(1 + seed * 7);
    for (float& value : values)
      value = seed % 3 == 0 ? numbers.any() : std::round(numbers.between(-9.0F, 9.0F));
    std::vector<float> sorted;
    for (const float value : values) {
      if (!std::isnan(value)) sorted.push_back(value);
    }
    std::sort(sorted.begin(), sorted.end());
    for (const double share : {0.0, 0.01, 0.1, 0.37, 0.5, 0.998, 1.0}) {
      const float found = quantile(values.data(), values.size(), share);
      if (sorted.empty()) {
        EXPECT_TRUE(std::isnan(found));
        continue;
      }
      const auto rank = static_cast<std::size_t>(share * static_cast<double>(sorted.size() - 1));
      EXPECT_EQ(found, sorted[rank]) << seed << ", " << share;
    }
  }
}

// More values than are counted in one go.
TEST_P(Variants, CountNotAboveOfVeryMany) {
  std::vector<float> values(3'000'005);
  for (std::size_t i = 0; i < values.size(); ++i) values[i] = static_cast<float>(i % 7);
  for (const float limit : {-1.0F, 0.0F, 4.5F, 6.0F}) {
    EXPECT_EQ(variant_.countNotAbove(values.data(), values.size(), limit),
              scalar_.countNotAbove(values.data(), values.size(), limit));
  }
}

// Every 997th positive float: a prime far from a power of two meets all exponents and mantissas.
TEST(Decibels, AreWithinTheStatedBoundOfTheLogarithm) {
  std::vector<float> powers;
  for (std::uint32_t bits = 0x00800000; bits < 0x7F800000; bits += 997)
    powers.push_back(std::bit_cast<float>(bits));
  std::vector<float> found(powers.size());
  decibels(found.data(), powers.data(), powers.size(), std::numeric_limits<float>::min());
  double largest = 0.0;
  for (std::size_t i = 0; i < powers.size(); ++i) {
    largest = std::max(largest, std::abs(found[i] - 10.0 * std::log10(static_cast<double>(powers[i]))));
  }
  EXPECT_LT(largest, 5e-5);
}

TEST(Decibels, OfWhatHasNoLogarithm) {
  using Limits = std::numeric_limits<float>;
  const std::vector<float> powers{0.0F, -0.0F, -1.0F,         Limits::quiet_NaN(), Limits::denorm_min(),
                                  1.0F, 1e-6F, 1.0000001e-6F, Limits::infinity(),  -Limits::infinity()};
  std::vector<float> found(powers.size());
  decibels(found.data(), powers.data(), powers.size(), kLeast);
  for (const std::size_t least : {0, 1, 2, 3, 4, 6, 9}) EXPECT_NEAR(found[least], -60.0F, 1e-5F) << least;
  EXPECT_EQ(found[5], 0.0F);
  EXPECT_NEAR(found[7], -60.0F, 1e-5F);
  EXPECT_NEAR(found[8], 385.318F, 1e-3F);
}

TEST(ToUint16, RoundsHalvesUpAndClamps) {
  using Limits = std::numeric_limits<float>;
  const std::pair<float, std::uint16_t> cases[] = {{0.0F, 0},
                                                   {0.49F, 0},
                                                   {0.5F, 1},
                                                   {1.5F, 2},
                                                   {-0.5F, 0},
                                                   {-7.0F, 0},
                                                   {65534.4F, 65534},
                                                   {65534.5F, 65535},
                                                   {65535.4F, 65535},
                                                   {65536.0F, 65535},
                                                   {1e30F, 65535},
                                                   {Limits::infinity(), 65535},
                                                   {-1e30F, 0},
                                                   {-Limits::infinity(), 0},
                                                   {Limits::quiet_NaN(), 0}};
  std::vector<float> values;
  std::vector<std::uint16_t> expected;
  for (const auto& [value, number] : cases) values.push_back(value), expected.push_back(number);
  std::vector<std::uint16_t> found(values.size());
  toUint16(found.data(), values.data(), values.size(), 1.0F, 0.0F);
  EXPECT_EQ(found, expected);
  toUint16(found.data(), values.data(), 3, 100.0F, 20.0F);
  found.resize(3);
  EXPECT_EQ(found, (std::vector<std::uint16_t>{20, 69, 70}));
}

}  // namespace
}  // namespace oct::vec::test
