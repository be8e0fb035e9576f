// Every variant against the plain loop, bit for bit; the plain loop against exact arithmetic. Copies, whole and cropped,
// below and above the size from which they go past the caches. Which variants there are and which are used.
#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <numeric>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include "vec/routines.h"

namespace oct::vec::test {
namespace {

// An array between guard words, at any distance from an aligned address.
template <class Value>
class GuardedArray {
 public:
  // offset: places beyond a multiple of 64 bytes
  GuardedArray(std::size_t size, std::size_t offset)
      : bytes_((size + offset) * sizeof(Value) + 3 * guard), size_(size) {
    std::memset(bytes_.data(), pattern, bytes_.size());
    const auto address = reinterpret_cast<std::uintptr_t>(bytes_.data()) + guard;
    const std::uintptr_t aligned = (address + 63) / 64 * 64;
    first_ = guard + (aligned - address) + offset * sizeof(Value);
  }

  Value* data() { return reinterpret_cast<Value*>(bytes_.data() + first_); }
  Value& operator[](std::size_t i) { return data()[i]; }

  // Whether everything but the array is as it was.
  bool is_intact_around() const {
    const auto is_as_before = [](unsigned char byte) { return byte == pattern; };
    const auto begin = bytes_.begin() + static_cast<std::ptrdiff_t>(first_);
    const auto end = begin + static_cast<std::ptrdiff_t>(size_ * sizeof(Value));
    return std::all_of(bytes_.begin(), begin, is_as_before) && std::all_of(end, bytes_.end(), is_as_before);
  }

  // Bit for bit, so that NaN equals itself.
  bool operator==(const GuardedArray& other) const {
    return size_ == other.size_ && std::memcmp(bytes_.data() + first_, other.bytes_.data() + other.first_,
                                               size_ * sizeof(Value)) == 0;
  }

 private:
  static constexpr std::size_t guard = 128;
  static constexpr unsigned char pattern = 0xA5;

  std::vector<unsigned char> bytes_;
  std::size_t size_;
  std::size_t first_ = 0;
};

constexpr std::array<InstructionSet, 5> vector_sets{InstructionSet::sse, InstructionSet::sse2,
                                                    InstructionSet::sse41, InstructionSet::avx,
                                                    InstructionSet::f16c};

const char* name_of(InstructionSet set) {
  constexpr std::array<const char*, 6> names{"scalar", "sse", "sse2", "sse41", "avx", "f16c"};
  return names[static_cast<std::size_t>(set)];
}

// Ordinary numbers of all sizes, and in between the awkward ones.
class Numbers {
 public:
  explicit Numbers(unsigned seed) : random_(seed) {}

  // Any bits but those of a signalling NaN; an eighth are special values.
  float any() {
    using Limits = std::numeric_limits<float>;
    constexpr std::array special{Limits::quiet_NaN(),
                                 Limits::infinity(),
                                 -Limits::infinity(),
                                 Limits::max(),
                                 Limits::lowest(),
                                 Limits::min(),
                                 Limits::denorm_min(),
                                 -Limits::denorm_min(),
                                 0.0F,
                                 -0.0F,
                                 1.0F,
                                 0.5F,
                                 65535.0F,
                                 65535.5F};
    if (random_() % 8 == 0) return special[random_() % special.size()];
    const auto number = std::bit_cast<float>(static_cast<std::uint32_t>(random_()));
    return std::isnan(number) ? 0.25F : number;
  }

  float between(float low, float high) { return std::uniform_real_distribution<float>(low, high)(random_); }

  std::uint16_t count() { return static_cast<std::uint16_t>(random_()); }

 private:
  std::mt19937 random_;
};

constexpr float least_value = 1e-6F;
constexpr float not_a_number = std::numeric_limits<float>::quiet_NaN();
constexpr float infinity = std::numeric_limits<float>::infinity();
constexpr std::size_t lengths = 40;  // five vectors of the widest kind
constexpr std::size_t offsets = 9;

class Variants : public testing::TestWithParam<InstructionSet> {
 protected:
  void SetUp() override {
    if (!is_supported(GetParam())) GTEST_SKIP() << "this processor has no " << name_of(GetParam());
  }

  // Runs work(routines, destination) with the plain loops and with the variant.
  template <class To, class Work>
  void expect_same(const char* name, std::size_t count, std::size_t offset, Work work) {
    GuardedArray<To> expected(count, offset);
    GuardedArray<To> found(count, offset);
    work(scalar_, expected);
    work(variant_, found);
    EXPECT_TRUE(found == expected && found.is_intact_around()) << name;
  }

  Routines scalar_ = routines_of(InstructionSet::scalar);
  Routines variant_ = routines_of(GetParam());
};

// With a value of next() in every place.
template <class Value, class Next>
GuardedArray<Value> filled(std::size_t count, std::size_t offset, Next next) {
  GuardedArray<Value> values(count, offset);
  for (std::size_t i = 0; i < count; ++i) values[i] = next();
  return values;
}

TEST_P(Variants, EqualThePlainLoops) {
  for (unsigned i = 0; i < 10 * lengths * offsets; ++i) {
    const unsigned seed = i / (lengths * offsets);
    const std::size_t count = i / offsets % lengths;
    const std::size_t offset = i % offsets;
    SCOPED_TRACE(testing::Message() << count << " values at " << offset << ", seed " << seed);
    Numbers numbers(i);
    const auto any = [&] { return numbers.any(); };
    auto values = filled<float>(count, offset + 1, any);
    auto background = filled<float>(count, offset + 2, any);
    auto counts = filled<std::uint16_t>(count, offset + 1, [&] { return numbers.count(); });
    // The sign of NaN depends on which of two NaN an addition meets first.
    auto fields = filled<float>(2 * count, offset + 1, [&] {
      const float number = any();
      return std::isnan(number) ? 3.0F : number;
    });
    auto readings = filled<float>(count, offset + 1,
                                  [&] { return seed % 2 == 0 ? any() : numbers.between(-0.1F, 2.0F); });

    expect_same<float>("extremes", 2, 0, [&](const Routines& routines, auto& to) {
      const vec::Extremes found = routines.extremes(values.data(), count);
      to[0] = found.lowest + 0.0F;  // which of two zeros is open
      to[1] = found.highest + 0.0F;
    });
    expect_same<float>("raise", count, offset, [&](const Routines& routines, auto& to) {
      std::copy_n(background.data(), count, to.data());
      routines.raise(to.data(), values.data(), count);
    });
    for (const float limit : {-infinity, -1.0F, -0.0F, 0.0F, 0.5F, 65535.0F, infinity, not_a_number}) {
      EXPECT_EQ(variant_.count_not_above(values.data(), count, limit),
                scalar_.count_not_above(values.data(), count, limit))
          << "limit " << limit;
    }
    expect_same<float>("subtract", count, offset, [&](const Routines& routines, auto& to) {
      routines.subtract(to.data(), counts.data(), background.data(), count);
    });
    expect_same<float>("powers", count, offset, [&](const Routines& routines, auto& to) {
      routines.powers(to.data(), fields.data(), count);
    });
    const float least = seed % 2 == 0 ? least_value : 1.5e-38F;
    expect_same<float>("decibels", count, offset, [&](const Routines& routines, auto& to) {
      routines.decibels(to.data(), values.data(), count, least);
    });
    expect_same<float>("decibels in place", count, offset, [&](const Routines& routines, auto& to) {
      std::copy_n(values.data(), count, to.data());
      routines.decibels(to.data(), to.data(), count, least);
    });
    expect_same<std::uint16_t>("to_uint16", count, offset,
                               [&, plain = seed % 4 == 0](const Routines& routines, auto& to) {
                                 routines.to_uint16(to.data(), readings.data(), count,
                                                    plain ? 1.0F : 38400.0F, plain ? 0.0F : 1280.0F);
                               });
    expect_same<std::uint16_t>("to_half", count, offset, [&](const Routines& routines, auto& to) {
      routines.to_half(to.data(), readings.data(), count);
    });
  }
}

// More values than are counted in one go.
TEST_P(Variants, CountNotAboveOfVeryMany) {
  std::vector<float> values(3'000'005);
  for (std::size_t i = 0; i < values.size(); ++i) values[i] = static_cast<float>(i % 7);
  for (const float limit : {-1.0F, 0.0F, 4.5F, 6.0F}) {
    EXPECT_EQ(variant_.count_not_above(values.data(), values.size(), limit),
              scalar_.count_not_above(values.data(), values.size(), limit));
  }
}

INSTANTIATE_TEST_SUITE_P(Sets, Variants, testing::ValuesIn(vector_sets),
                         [](const auto& test) { return name_of(test.param); });

TEST(ExtremesAndQuantile, IgnoreNanAndKnowTheEmptyArray) {
  struct Case {
    std::vector<float> values;
    float lowest = infinity;
    float highest = -infinity;
  };
  for (const auto& [values, lowest, highest] :
       {Case{}, Case{{not_a_number}},
        Case{{not_a_number, 4.0F, -1.0F, not_a_number, infinity, 2.0F}, -1.0F, infinity}}) {
    const vec::Extremes found = extremes(values.data(), values.size());
    EXPECT_EQ(found.lowest, lowest);
    EXPECT_EQ(found.highest, highest);
    EXPECT_EQ(std::isnan(quantile(values.data(), values.size(), 0.5)), values.size() < 2);
  }
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
  decibels(found.data(), powers.data(), powers.size(), least_value);
  for (const std::size_t least : {0, 1, 2, 3, 4, 6, 9}) EXPECT_NEAR(found[least], -60.0F, 1e-5F) << least;
  EXPECT_EQ(found[5], 0.0F);
  EXPECT_NEAR(found[7], -60.0F, 1e-5F);
  EXPECT_NEAR(found[8], 385.318F, 1e-3F);
}

TEST(ToUint16, RoundsHalvesUpAndClamps) {
  constexpr std::pair<float, int> cases[] = {
      {0.0F, 0},      {0.49F, 0},        {0.5F, 1},         {1.5F, 2},         {-0.5F, 0},
      {-7.0F, 0},     {65534.4F, 65534}, {65534.5F, 65535}, {65535.4F, 65535}, {65536.0F, 65535},
      {1e30F, 65535}, {infinity, 65535}, {-1e30F, 0},       {-infinity, 0},    {not_a_number, 0}};
  std::vector<float> values;
  std::vector<std::uint16_t> expected;
  for (const auto& [value, number] : cases)
    values.push_back(value), expected.push_back(static_cast<std::uint16_t>(number));
  std::vector<std::uint16_t> found(values.size());
  to_uint16(found.data(), values.data(), values.size(), 1.0F, 0.0F);
  EXPECT_EQ(found, expected);
  to_uint16(found.data(), values.data(), 3, 100.0F, 20.0F);
  found.resize(3);
  EXPECT_EQ(found, (std::vector<std::uint16_t>{20, 69, 70}));
}

// Each number of 16 bits, the middle between it and the next one, and what lies on either side of that.
TEST(ToHalf, RoundsToTheNearestAndOfTwoToTheEven) {
  const auto value_of = [](int half) {
    const int exponent = half >> 10;
    return static_cast<float>(exponent == 0 ? std::ldexp(half, -24)
                                            : std::ldexp(1024 + half % 1024, exponent - 25));
  };
  std::vector<float> values;
  std::vector<std::uint16_t> expected;
  const auto expect = [&](float value, int half) {
    for (const int sign : {0, 0x8000}) {
      values.push_back(sign == 0 ? value : -value);
      expected.push_back(static_cast<std::uint16_t>(sign | half));
    }
  };
  constexpr int infinite = 0x7C00;
  for (int half = 0; half < infinite; ++half) {
    const float middle = (value_of(half) + value_of(half + 1)) / 2.0F;
    expect(value_of(half), half);
    expect(std::nextafter(middle, 0.0F), half);
    expect(middle, half + half % 2);
    expect(std::nextafter(middle, infinity), half + 1);
  }
  for (const float value : {infinity, 1e30F}) expect(value, infinite);
  std::vector<std::uint16_t> found(values.size());
  to_half(found.data(), values.data(), values.size());
  EXPECT_EQ(found, expected);
  to_half(found.data(), &not_a_number, 1);
  EXPECT_GT(found[0] & 0x7FFF, infinite);
}

// ---- Copies

using Copies = Variants;

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
  routines.crop_copy(destination.data(), source.data(), a_scans, samples, kept, a_scans * kept);
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
    for (std::size_t count = 0; count < 40; ++count) expect_copied(variant_, count, 16 - offset, offset);
    for (const std::size_t kept : {0, 1, 3, 4, 15, 16, 17, 40}) expect_cropped(variant_, 5, 40, kept, offset);
  }
  expect_cropped(variant_, 0, 40, 7, 0);
}

TEST_P(Copies, LargeOnesGoPastTheCaches) {
  constexpr std::size_t limit = streamed_bytes / sizeof(float);
  expect_copied(variant_, limit - 1, 0, 1);
  for (const std::size_t offset : {0, 1, 4, 7, 8, 15}) {
    expect_copied(variant_, limit + offset / 2, 1, offset);
  }
  // Rows shorter and longer than a cache line, whose ends fall anywhere into one.
  for (const std::size_t kept : {5, 16, 17, 100})
    expect_cropped(variant_, limit / kept + 1, kept + 1, kept, kept % 2 * 13);
  expect_cropped(variant_, 1, limit + 50, limit + 3, 7);
}

INSTANTIATE_TEST_SUITE_P(Sets, Copies,
                         testing::Values(InstructionSet::scalar, InstructionSet::sse, InstructionSet::avx),
                         [](const auto& test) { return name_of(test.param); });

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
